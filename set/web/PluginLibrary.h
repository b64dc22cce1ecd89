// A plug-in's shared library.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "host/Plugin.h"

namespace epgset {

/// Why a plug-in cannot be used; what() names its file.
class PluginError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Loads a plug-in and holds it; unloads it when destroyed. Nothing of the plug-in, its exceptions
/// included, may be in use then.
class PluginLibrary {
public:
    /// Loads `file`, asks it for its descriptor and checks that. Throws PluginError.
    explicit PluginLibrary(const std::string& file);

    /// The plug-in's descriptor, valid as long as this object.
    const PluginDescriptor& descriptor() const { return *descriptor_; }

private:
    struct Unload {
        void operator()(void* library) const;
    };

    std::unique_ptr<void, Unload> library_;
    const PluginDescriptor* descriptor_ = nullptr;
};

}  // namespace epgset
