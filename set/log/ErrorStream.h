// Standard error, which may be a pipe that nobody reads.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>

namespace epgset {

/// Writes lines to standard error without being held up by who reads it: a pipe, a socket or a terminal that
/// takes nothing now gets nothing. One that is only slow is waited for, for a tenth of the time at most, and
/// one that took nothing for 200 ms not again until it takes something. (A file on a disk that hangs does
/// wait.) Used under a lock.
class ErrorStream {
public:
    ErrorStream() = default;
    ~ErrorStream();
    ErrorStream(const ErrorStream&) = delete;
    ErrorStream& operator=(const ErrorStream&) = delete;

    /// Writes a line, its break included, with a single write where it fits; false when it was not taken. One
    /// that was taken in part counts as taken: its rest is written before any other line.
    bool write(std::string_view line);

private:
    enum class Kind { None, File, Socket, Other };

    void follow();
    bool writeRest();
    std::size_t writeSome(std::string_view bytes);
    std::size_t tryToWrite(std::string_view bytes) const;
    bool waitForRoom();

    Kind kind_ = Kind::None;
    int own_ = -1;  ///< standard error opened once more so that writing does not wait; -1: there is none
    dev_t device_ = 0;
    ino_t inode_ = 0;
    std::string rest_;
    bool stuck_ = false;  ///< nothing was taken since it was waited for in vain
    std::chrono::steady_clock::time_point nextWait_{};
};

}  // namespace epgset
