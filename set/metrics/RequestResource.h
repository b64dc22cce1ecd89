// What a request counts as.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace epgset {

/// The resource of a path, identifiers left out, as in "/ws/epg2/channels/{id}/programs". "other" for what is
/// no resource: clients make no new names.
std::string resourceOf(const std::vector<std::string>& segments);

/// The method, or "other" for one that is none of HTTP's usual ones.
std::string methodOf(std::string_view method);

}  // namespace epgset
