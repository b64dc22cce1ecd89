// Where the plug-in is.
#pragma once

#include <string>

namespace epgset {

/// `given`, or where that is empty EpgSQLPlugin.so beside the program, else in the folder lib beside the
/// program's. Throws StartError when there is no such file.
std::string findPluginFile(const std::string& given);

}  // namespace epgset
