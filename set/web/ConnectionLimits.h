// What the clients of an HTTP server may take.
#pragma once

#include <chrono>
#include <cstddef>

namespace epgset {

/// Bounds of connections, of time and of memory. The defaults are those of the options of the same names.
struct ConnectionLimits {
    unsigned connections = 256;              ///< open at a time
    unsigned connectionsPerAddress = 128;    ///< of them from one client address
    std::chrono::seconds headTime{30};       ///< from the first byte of a request to the end of its headers
    std::chrono::seconds bodyTime{60};       ///< from there to the end of its body
    std::chrono::seconds answerTime{600};    ///< to take an answer, but for a stream
    std::size_t bodyMemory = 64U << 20U;     ///< bytes of long request bodies that are held together
    std::size_t answerMemory = 256U << 20U;  ///< bytes of answers that are held until they are sent, together
};

}  // namespace epgset
