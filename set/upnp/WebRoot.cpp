#include "set/upnp/WebRoot.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include "host/Logger.h"
#include "host/UPnP.h"

namespace epgset {
namespace {

namespace fs = std::filesystem;

constexpr const char* description = "rcr/RemoteControlReceiver.xml";

// The plug-in reads the whole file into memory, so that a file of any size must not get there.
constexpr std::uintmax_t maximumDescriptionBytes = std::uintmax_t{1} << 20;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/upnp");
    return logger;
}

std::mutex rootMutex;

fs::path& rootInUse() {
    static fs::path root;  // guarded by rootMutex
    return root;
}

fs::path webRoot() {
    const std::lock_guard lock(rootMutex);
    return rootInUse();
}

/// Why the folder cannot be served; empty when it can.
std::string faultOf(const fs::path& root) {
    std::error_code error;
    if (root.empty()) return "there is no web root";
    if (!fs::is_directory(root, error)) return root.string() + " is no folder";
    const fs::path file = root / description;
    if (!fs::is_regular_file(file, error)) return file.string() + " is no file";
    const std::uintmax_t bytes = fs::file_size(file, error);
    if (error) return file.string() + ": " + error.message();
    if (bytes > maximumDescriptionBytes) return file.string() + " is larger than 1 MiB";
    return {};
}

/// The folder as a text that malloc gave, without a "/" at its end.
char* textOf(const fs::path& root) {
    std::string text = root.string();
    while (text.ends_with('/'))
        text.pop_back();
    return ::strdup(text.c_str());
}

}  // namespace

void useWebRoot(fs::path folder) {
    const std::lock_guard lock(rootMutex);
    rootInUse() = std::move(folder);
}

fs::path shippedWebRoot() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "share/epghost/web-root";
}

}  // namespace epgset

int UPnP_CD_GetWebRootPath(char** path) {
    constexpr int failure = 1;
    *path = nullptr;
    try {
        const std::filesystem::path root = epgset::webRoot();
        if (const std::string fault = epgset::faultOf(root); !fault.empty()) {
            epgset::log().warning("No device description: %s", fault);
            return failure;
        }
        *path = epgset::textOf(root);
    } catch (const std::exception& error) {
        epgset::log().error("No device description: %s", error.what());
    }
    return *path ? 0 : failure;
}
