// How the host and a plug-in meet: one exported function, one descriptor.
//
// Rules of this binary interface:
//  1. The library exports `pluginMainEntry`, unmangled, and no other symbol.
//  2. The descriptor is eleven machine words (44 bytes on the 32-bit systems of the sets), constant,
//     and valid until the library is unloaded. Words named reserved are 0.
//  3. `handleRequest` and `onTimer` may be called from any thread of the host. `handleRequest`
//     answers non-zero when the request was answered.
//  4. What they throw, the host catches.
#pragma once

#include <cstdint>

#include "host/HttpRequest.h"
#include "host/HttpResponse.h"

extern "C" {

/// What a plug-in hands to the host.
struct PluginDescriptor {
    std::uintptr_t interfaceVersion;  ///< 1
    std::uintptr_t reserved1;
    std::uintptr_t reserved2;
    std::uintptr_t reserved3;
    int (*handleRequest)(Container::HttpRequest& request, Container::HttpResponse& response);
    std::uintptr_t reserved5;
    int (*getTimerPeriod)();  ///< seconds between two calls of onTimer
    std::uintptr_t reserved7;
    std::uintptr_t reserved8;
    void (*onTimer)();  ///< maintenance
    std::uintptr_t reserved10;
};

/// Type of `pluginMainEntry`: keeps the host's context word, sets `*descriptorOut` and answers 0. May
/// be called more than once.
using PluginMainEntry = int (*)(std::uintptr_t hostContext, const PluginDescriptor** descriptorOut);
}

static_assert(sizeof(PluginDescriptor) == 11 * sizeof(void*), "the descriptor is eleven machine words");
static_assert(sizeof(void*) != 4 || sizeof(PluginDescriptor) == 44, "44 bytes on 32-bit systems");
static_assert(sizeof(std::uintptr_t) == sizeof(void*), "every word holds a number or a function");
