#include "tests/support/StreamServer.h"

#include <microhttpd.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace epgset::test {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Packet = std::array<unsigned char, StreamServer::packetBytes>;

constexpr std::size_t numberAt = 4;
constexpr std::size_t payloadAt = numberAt + 8;
constexpr std::chrono::milliseconds step{2};

Packet packetOf(std::uint64_t number) {
    Packet packet{};
    packet[0] = 0x47;  // the sync byte
    packet[1] = 0x01;  // PID 0x100
    packet[3] =
        static_cast<unsigned char>(0x10 | (number & 0x0F));  // payload alone, and the continuity counter
    for (std::size_t i = 0; i < 8; ++i)
        packet[numberAt + i] = static_cast<unsigned char>(number >> (8 * (7 - i)));
    for (std::size_t i = payloadAt; i < packet.size(); ++i)
        packet[i] = static_cast<unsigned char>(number * 31 + i);
    return packet;
}

/// Bytes of the stream from a position on.
void copyStream(std::uint64_t position, char* out, std::size_t count) {
    while (count > 0) {
        const Packet packet = packetOf(position / packetOf(0).size());
        const auto within = static_cast<std::size_t>(position % packet.size());
        const std::size_t part = std::min(count, packet.size() - within);
        std::memcpy(out, packet.data() + within, part);
        position += part;
        out += part;
        count -= part;
    }
}

}  // namespace

class StreamServer::Server {
public:
    /// Null: without TLS.
    explicit Server(const Certificate* certificate) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        constexpr unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION;
        daemon_ = certificate == nullptr
                      ? MHD_start_daemon(flags, 0, nullptr, nullptr, &Server::answer, this,
                                         MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_END)
                      : MHD_start_daemon(flags | MHD_USE_TLS, 0, nullptr, nullptr, &Server::answer, this,
                                         MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_HTTPS_MEM_KEY,
                                         certificate->key.c_str(), MHD_OPTION_HTTPS_MEM_CERT,
                                         certificate->certificate.c_str(), MHD_OPTION_END);
        if (daemon_ == nullptr) throw std::runtime_error("the stream server cannot be started");
        const MHD_DaemonInfo* const info = MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_BIND_PORT);
        if (info == nullptr) throw std::runtime_error("the stream server has no port");
        address_ = std::string(certificate == nullptr ? "http" : "https") +
                   "://127.0.0.1:" + std::to_string(info->port);
    }
    ~Server() {
        stopping = true;
        MHD_stop_daemon(daemon_);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    const std::string& address() const { return address_; }

    std::atomic<bool> stopping{false};
    std::atomic<std::uint64_t> rate{2'000'000};
    std::atomic<std::chrono::milliseconds> dropAfter{std::chrono::milliseconds(0)};
    std::atomic<bool> silent{false};
    std::atomic<unsigned> refusal{0};
    std::atomic<int> requests{0};
    std::atomic<int> drops{0};  ///< each connection ends that was made before the last one
    std::atomic<int> ends{0};

    mutable std::mutex mutex;
    std::string elsewhere;       ///< guarded by mutex
    std::deque<Run> runs;        ///< guarded by mutex; one for each connection, which never move
    std::uint64_t furthest = 0;  ///< guarded by mutex; no packet from this on was sent

private:
    /// One answer with the stream.
    struct Connection {
        Server& server;
        Run& run;
        const SteadyClock::time_point began = SteadyClock::now();
        const int drops = server.drops;
        const int ends = server.ends;
    };

    static MHD_Result answer(void* self, MHD_Connection* connection, const char* path, const char*,
                             const char*, const char*, std::size_t*, void**) {
        return static_cast<Server*>(self)->answer(connection, path);
    }

    MHD_Result answer(MHD_Connection* connection, const std::string& path) {
        ++requests;
        if (const unsigned status = refusal) return sendText(connection, status);
        if (path == "/live.ts") return sendStream(connection);
        if (path == "/file.ts") return sendFile(connection);
        if (path == "/once") return sendAway(connection, address_ + "/live.ts");
        if (path == "/round") return sendAway(connection, address_ + "/round");
        return path == "/elsewhere" ? sendAway(connection, addressElsewhere()) : sendText(connection, 404);
    }

    static MHD_Result queue(MHD_Connection* connection, unsigned status, MHD_Response* response) {
        const MHD_Result result = MHD_queue_response(connection, status, response);
        MHD_destroy_response(response);
        return result;
    }

    static MHD_Result sendText(MHD_Connection* connection, unsigned status) {
        static char text[] = "not now";
        return queue(connection, status,
                     MHD_create_response_from_buffer(sizeof text - 1, text, MHD_RESPMEM_PERSISTENT));
    }

    static MHD_Result sendAway(MHD_Connection* connection, const std::string& address) {
        MHD_Response* const response = MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
        MHD_add_response_header(response, "Location", address.c_str());
        return queue(connection, 302, response);
    }

    static MHD_Result sendFile(MHD_Connection* connection) {
        std::string text = bytesOf({0, filePackets * packetBytes});
        return queue(connection, 200,
                     MHD_create_response_from_buffer(text.size(), text.data(), MHD_RESPMEM_MUST_COPY));
    }

    std::string addressElsewhere() const {
        const std::lock_guard lock(mutex);
        return elsewhere;
    }

    Run& beginRun() {
        const std::lock_guard lock(mutex);
        return runs.emplace_back(Run{furthest + 1, 0});
    }

    // The library has a lock of its own, so that none is held when it is called.
    MHD_Result sendStream(MHD_Connection* connection) {
        Run& run = beginRun();
        constexpr std::size_t block = 8192;
        return queue(connection, 200,
                     MHD_create_response_from_callback(
                         MHD_SIZE_UNKNOWN, block, &Server::readStream, new Connection{*this, run},
                         [](void* made) { delete static_cast<Connection*>(made); }));
    }

    static ssize_t readStream(void* made, std::uint64_t position, char* out, std::size_t maximum) {
        const auto& connection = *static_cast<Connection*>(made);
        return connection.server.readStream(connection, position, out, maximum);
    }

    ssize_t readStream(const Connection& connection, std::uint64_t position, char* out, std::size_t maximum) {
        for (;;) {
            const auto age = SteadyClock::now() - connection.began;
            const auto limit = dropAfter.load();
            if (stopping || drops != connection.drops || (limit.count() > 0 && age >= limit))
                return MHD_CONTENT_READER_END_WITH_ERROR;
            if (ends != connection.ends) return MHD_CONTENT_READER_END_OF_STREAM;
            const auto due = static_cast<std::uint64_t>(std::chrono::duration<double>(age).count() *
                                                        static_cast<double>(rate.load()));
            if (due > position && !silent) {
                const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(maximum, due - position));
                send(connection, position, out, count);
                return static_cast<ssize_t>(count);
            }
            std::this_thread::sleep_for(step);
        }
    }

    void send(const Connection& connection, std::uint64_t position, char* out, std::size_t count) {
        const std::lock_guard lock(mutex);
        copyStream(connection.run.firstPacket * packetBytes + position, out, count);
        connection.run.bytes = position + count;
        furthest = std::max(furthest, connection.run.firstPacket + connection.run.bytes / packetBytes);
    }

    MHD_Daemon* daemon_ = nullptr;
    std::string address_;
};

StreamServer::StreamServer() : server_(std::make_unique<Server>(nullptr)) {}

StreamServer::StreamServer(const Certificate& certificate)
    : server_(std::make_unique<Server>(&certificate)) {}

StreamServer::~StreamServer() = default;

std::string StreamServer::url(std::string_view path) const {
    return server_->address() + std::string(path);
}

void StreamServer::sendBytesPerSecond(std::uint64_t rate) {
    server_->rate = rate;
}

void StreamServer::dropEvery(std::chrono::milliseconds time) {
    server_->dropAfter = time;
}

void StreamServer::dropAll() {
    ++server_->drops;
}

void StreamServer::endAll() {
    ++server_->ends;
}

void StreamServer::keepSilent(bool silent) {
    server_->silent = silent;
}

void StreamServer::refuseWith(unsigned status) {
    server_->refusal = status;
}

void StreamServer::sendElsewhere(std::string address) {
    const std::lock_guard lock(server_->mutex);
    server_->elsewhere = std::move(address);
}

int StreamServer::connections() const {
    const std::lock_guard lock(server_->mutex);
    return static_cast<int>(server_->runs.size());
}

int StreamServer::requests() const {
    return server_->requests;
}

std::vector<StreamServer::Run> StreamServer::sent() const {
    const std::lock_guard lock(server_->mutex);
    std::vector<Run> runs(server_->runs.begin(), server_->runs.end());
    std::erase_if(runs, [](const Run& run) { return run.bytes == 0; });
    return runs;
}

std::string StreamServer::bytesOf(const Run& run) {
    std::string bytes(static_cast<std::size_t>(run.bytes), '\0');
    copyStream(run.firstPacket * packetBytes, bytes.data(), bytes.size());
    return bytes;
}

}  // namespace epgset::test
