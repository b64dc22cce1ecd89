// Reading a channel's source.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace epgset {

/// Why a source can never be read: it is no URL of HTTP, HTTPS or a file and no path. Nothing where it can.
std::optional<std::string> sourceFault(const std::string& source);

/// Takes what comes from a source. Called by the thread that reads; throws nothing.
class SourceTaker {
public:
    virtual ~SourceTaker() = default;

    /// Takes bytes; false when it has no use for any more.
    virtual bool take(std::string_view bytes) noexcept = 0;

    /// Whether it wants more. Asked several times a second.
    virtual bool wantsMore() noexcept = 0;
};

/// Reads a source, an HTTP or HTTPS URL or a file, time after time. Used by one thread, but for wake().
class SourceReader {
public:
    struct Limits {
        std::chrono::milliseconds connect{5000};   ///< for making the connection
        std::chrono::milliseconds silence{10000};  ///< without a byte
    };

    enum class End {
        Unwanted,  ///< the taker wants no more
        Over,      ///< the source has an end, and everything up to it was read
        Broken     ///< it may be read again later
    };

    struct Outcome {
        End end;
        std::string reason;  ///< of a Broken one
    };

    /// The source must have no fault.
    SourceReader(const std::string& source, const Limits& limits);
    ~SourceReader();
    SourceReader(const SourceReader&) = delete;
    SourceReader& operator=(const SourceReader&) = delete;

    /// Opens the source and reads as long as it lasts and is wanted. Redirects are followed to HTTP and HTTPS
    /// alone, five of them at most.
    Outcome read(SourceTaker& taker);

    /// Waits, as long as the taker wants more.
    void pause(std::chrono::milliseconds time, SourceTaker& taker);

    /// Has the taker asked at once whether it wants more. Called by any thread.
    void wake();

private:
    class Transfer;

    struct CloseMulti {
        void operator()(void* multi) const;
    };

    const std::string url_;
    const Limits limits_;
    const std::unique_ptr<void, CloseMulti> multi_;
};

}  // namespace epgset
