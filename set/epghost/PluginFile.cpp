#include "set/epghost/PluginFile.h"

#include <filesystem>
#include <system_error>

#include "set/epghost/Options.h"

namespace epgset {

std::string findPluginFile(const std::string& given) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (!given.empty()) {
        if (!fs::exists(given, error)) throw StartError("--plugin: " + given + ": no such file");
        return given;
    }
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    const fs::path name = "EpgSQLPlugin.so";
    for (const fs::path& file : {folder / name, folder.parent_path() / "lib" / name}) {
        if (fs::exists(file, error)) return file.string();
    }
    throw StartError("no plug-in: no " + name.string() + " in " + folder.string() + " nor in its ../lib");
}

}  // namespace epgset
