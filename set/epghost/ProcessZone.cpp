#include "set/epghost/ProcessZone.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "set/text/Utf8.h"

namespace epgset {
namespace {

/// The part of a zone file's path that names the zone; empty for a file elsewhere.
std::string zoneOfFile(std::string_view path) {
    constexpr std::string_view folder = "/zoneinfo/";
    const std::size_t found = path.rfind(folder);
    return found == std::string_view::npos ? std::string() : std::string(path.substr(found + folder.size()));
}

/// The name as the system gives it, in bytes of any kind.
std::string givenZoneName() {
    if (const char* variable = std::getenv("TZ")) {
        std::string_view name(variable);
        if (name.starts_with(':')) name.remove_prefix(1);
        if (name.empty()) return "UTC";
        const std::string ofFile = zoneOfFile(name);
        return ofFile.empty() ? std::string(name) : ofFile;
    }
    std::error_code error;
    const auto target = std::filesystem::read_symlink("/etc/localtime", error);
    const std::string ofSystem = error ? std::string() : zoneOfFile(target.string());
    return ofSystem.empty() ? "UTC" : ofSystem;
}

}  // namespace

std::string processZoneName() {
    return repairedUtf8(givenZoneName());
}

}  // namespace epgset
