// The kinds of services that a channel can be.
#pragma once

#include <array>
#include <string_view>

namespace epgset {

/// The words of the service types; a type's number is its place.
inline constexpr std::array<std::string_view, 8> serviceTypeNames{"ALL",  "TV",       "RADIO",    "OTHER",
                                                                  "FREE", "SCRAMBLE", "SEARCHED", "ANALOG"};

}  // namespace epgset
