// The page at the root of the set's web server.
#pragma once

#include <string>

namespace epgset {

/// An HTML page that names the resources.
std::string frontPage();

}  // namespace epgset
