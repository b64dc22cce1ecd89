// A connection over loopback whose other end reads whatever comes.
#pragma once

#include <string>
#include <thread>

namespace epgbench {

/// Writes to a thread that reads and drops it.
class LoopbackSocket {
public:
    /// Throws std::system_error when there is no loopback.
    LoopbackSocket();
    ~LoopbackSocket();
    LoopbackSocket(const LoopbackSocket&) = delete;
    LoopbackSocket& operator=(const LoopbackSocket&) = delete;

    /// Hands all of it to the kernel. Throws std::system_error.
    void write(const std::string& bytes) const;

private:
    int writing_ = -1;
    int reading_ = -1;
    std::thread reader_;
};

}  // namespace epgbench
