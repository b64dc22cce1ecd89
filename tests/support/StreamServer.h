// A source that a channel can be recorded from.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace epgset::test {

/// An HTTP server on the loopback that sends an MPEG transport stream without an end. Every packet is one of
/// its own: its number stands in it and the rest follows from that. Like a broadcast, the stream does not
/// wait for its readers: a connection begins further on than all before it.
///
///     /live.ts   the stream
///     /file.ts   so many packets of it, with their length told before
///     /once      answers 302 with the address of /live.ts
///     /round     answers 302 with its own address
///     /elsewhere answers 302 with what sendElsewhere() was given
///
/// The switches may be used by any thread at any time and act on connections that run, too.
class StreamServer {
public:
    static constexpr std::size_t packetBytes = 188;
    static constexpr std::size_t filePackets = 1000;

    /// What a server shows that its clients can trust: PEM texts.
    struct Certificate {
        std::string key;
        std::string certificate;
    };

    StreamServer();

    /// Serves HTTPS.
    explicit StreamServer(const Certificate& certificate);
    ~StreamServer();
    StreamServer(const StreamServer&) = delete;
    StreamServer& operator=(const StreamServer&) = delete;

    /// Such as "http://127.0.0.1:41234/live.ts".
    std::string url(std::string_view path = "/live.ts") const;

    /// How fast each connection gets the stream. At first 2 MB/s.
    void sendBytesPerSecond(std::uint64_t rate);

    /// Breaks each connection off that long after it was made; 0 stops that.
    void dropEvery(std::chrono::milliseconds time);

    /// Breaks off all connections that there are.
    void dropAll();

    /// Ends all connections that there are as an answer should end.
    void endAll();

    /// Sends nothing more over any connection, or goes on.
    void keepSilent(bool silent);

    /// Answers every request with that status and a text; 0 stops that.
    void refuseWith(unsigned status);

    void sendElsewhere(std::string address);

    /// How many connections have asked for the stream, and how many requests there were in all.
    int connections() const;
    int requests() const;

    /// What one connection was sent: a run of packets from `firstPacket` on, the last one maybe cut.
    struct Run {
        std::uint64_t firstPacket = 0;
        std::uint64_t bytes = 0;
    };

    /// The runs of all connections that got something, in the order in which they were made.
    std::vector<Run> sent() const;

    /// The bytes of a run as they were sent.
    static std::string bytesOf(const Run& run);

private:
    class Server;
    std::unique_ptr<Server> server_;
};

}  // namespace epgset::test
