#include "set/web/PluginLibrary.h"

#include <dlfcn.h>

#include <cstdint>
#include <filesystem>

namespace epgset {
namespace {

/// The interface that this host speaks.
constexpr std::uintptr_t interfaceVersion = 1;

/// What dlerror() has to say.
std::string loaderMessage() {
    const char* message = dlerror();
    return message == nullptr ? "unknown error" : message;
}

}  // namespace

void PluginLibrary::Unload::operator()(void* library) const {
    dlclose(library);
}

PluginLibrary::PluginLibrary(const std::string& file) {
    // A bare name would be looked for in the system's library folders.
    const std::string path = std::filesystem::absolute(file).string();
    library_.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library_) throw PluginError("cannot load plug-in: " + loaderMessage());

    void* symbol = dlsym(library_.get(), "pluginMainEntry");
    if (symbol == nullptr) throw PluginError(file + ": not a plug-in: no pluginMainEntry");
    const auto entry = reinterpret_cast<PluginMainEntry>(symbol);
    int result = 0;
    try {
        result = entry(0, &descriptor_);
    } catch (...) {
        throw PluginError(file + ": pluginMainEntry threw an exception");
    }
    if (result != 0) throw PluginError(file + ": pluginMainEntry failed with " + std::to_string(result));
    if (descriptor_ == nullptr) throw PluginError(file + ": pluginMainEntry gave no descriptor");
    if (descriptor_->interfaceVersion != interfaceVersion) {
        throw PluginError(file + ": interface version " + std::to_string(descriptor_->interfaceVersion) +
                          " instead of " + std::to_string(interfaceVersion));
    }
    if (descriptor_->handleRequest == nullptr) throw PluginError(file + ": no request handler");
}

}  // namespace epgset
