#include "set/web/HttpServer.h"

#include <microhttpd.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

#include "host/Logger.h"
#include "set/log/RateLimit.h"
#include "set/web/ConnectionWatch.h"
#include "set/web/Exchange.h"
#include "set/web/LibraryResponse.h"
#include "set/web/StreamedBody.h"
#include "set/web/TaskQueue.h"

namespace epgset {
namespace {

/// Threads that move bytes; the requests themselves are answered elsewhere.
constexpr unsigned connectionThreads = 2;

/// How long the answers of the last requests may take to be sent when the server stops.
constexpr std::chrono::seconds farewell{1};

// Made when the library is loaded: there may be no memory for it when it is needed.
const Container::Logger serverLogger = Container::Logger::logger("set/web");

/// Clients cause most of what the library says, as often as they like: little of it is logged, so that it
/// takes the place of nothing else.
bool admitLibraryMessage() {
    static std::mutex mutex;
    static RateLimit limit(20, 0.2);
    const std::lock_guard lock(mutex);
    return limit.admit(std::chrono::steady_clock::now());
}

__attribute__((format(printf, 2, 0))) void logLibraryMessage(void*, const char* format, va_list arguments) {
    if (!admitLibraryMessage()) return;
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    serverLogger.warning("%s", text);
}

/// Leaves escapes as they are: whoever reads the path decodes it, once.
std::size_t keepEscapes(void*, MHD_Connection*, char* text) {
    return std::strlen(text);
}

/// The header lines of a request as they are read.
struct CollectedHeaders {
    WebHeaders lines;
    bool complete = true;
};

MHD_Result collectHeader(void* collected, MHD_ValueKind, const char* name, const char* value) {
    auto& headers = *static_cast<CollectedHeaders*>(collected);
    try {
        headers.lines.emplace_back(name, value == nullptr ? "" : value);
        return MHD_YES;
    } catch (...) {
        headers.complete = false;
        return MHD_NO;
    }
}

/// Throws std::bad_alloc.
WebHeaders headersOf(MHD_Connection* connection) {
    CollectedHeaders headers;
    MHD_get_connection_values(connection, MHD_HEADER_KIND, &collectHeader, &headers);
    if (!headers.complete) throw std::bad_alloc();
    return std::move(headers.lines);
}

/// Null: there was no memory to watch it.
ConnectionWatch::Connection* watchedOf(MHD_Connection* connection) {
    return static_cast<ConnectionWatch::Connection*>(
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
}

}  // namespace

/// The library's daemon and what its callbacks need.
class HttpServer::Connections {
public:
    Connections(ListenSocket socket, WebHandler& handler, const Limits& limits);
    ~Connections();
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

private:
    static void notifyConnection(void* self, MHD_Connection* connection, void** watched,
                                 MHD_ConnectionNotificationCode code);
    static void* startExchange(void* self, const char* target, MHD_Connection* connection);
    static MHD_Result continueExchange(void* self, MHD_Connection* connection, const char* path,
                                       const char* method, const char* version, const char* bytes,
                                       std::size_t* count, void** exchange);
    static void endExchange(void* self, MHD_Connection* connection, void** exchange,
                            MHD_RequestTerminationCode reason);

    MHD_Result receive(MHD_Connection* connection, Exchange& exchange, const char* method,
                       std::string_view bytes);
    MHD_Result begin(MHD_Connection* connection, Exchange& exchange, const char* method);
    MHD_Result receiveBody(MHD_Connection* connection, Exchange& exchange, std::string_view bytes);
    bool leavesBodyUnread(const Exchange& exchange) const;
    MHD_Result answer(MHD_Connection* connection, Exchange& exchange);
    void answerInTurn(MHD_Connection* connection, Exchange& exchange) noexcept;
    MHD_Result reply(MHD_Connection* connection, Exchange& exchange, WebResponse response);
    MHD_Result send(MHD_Connection* connection, Exchange& exchange);
    LibraryResponse makeResponse(MHD_Connection* connection, WebResponse& response);
    LibraryResponse makeStreamedResponse(MHD_Connection* connection,
                                         const std::shared_ptr<BodyStream>& stream);
    void endStreams();
    unsigned idleSeconds() const { return static_cast<unsigned>(limits_.idleTime.count()); }

    WebHandler& handler_;
    const Limits limits_;
    std::atomic<bool> stopping_ = false;
    std::atomic<int> unsent_ = 0;  ///< answers that have not been sent to their end
    std::mutex streamsMutex_;
    std::vector<std::shared_ptr<StreamedBody>> streams_;  ///< guarded by streamsMutex_; bodies being sent
    ConnectionWatch watch_;
    TaskQueue queue_;
    MHD_Daemon* daemon_ = nullptr;
};

HttpServer::Connections::Connections(ListenSocket socket, WebHandler& handler, const Limits& limits)
    : handler_(handler), limits_(limits), watch_(limits, limits.certificate.empty()) {
    const bool secure = !limits.certificate.empty();
    const unsigned flags = MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG |
                           (secure ? static_cast<unsigned>(MHD_USE_TLS) : 0U);
    std::vector<MHD_OptionItem> options;
    if (secure) {
        // The library only reads the texts.
        options.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char*>(limits.key.c_str())});
        options.push_back({MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char*>(limits.certificate.c_str())});
    }
    options.push_back({MHD_OPTION_END, 0, nullptr});
    daemon_ = MHD_start_daemon(flags, 0, nullptr, nullptr, &continueExchange, this,      //
                               MHD_OPTION_EXTERNAL_LOGGER, &logLibraryMessage, nullptr,  //
                               MHD_OPTION_LISTEN_SOCKET, socket.descriptor(),            //
                               MHD_OPTION_THREAD_POOL_SIZE, connectionThreads,           //
                               MHD_OPTION_CONNECTION_LIMIT, openFiles(limits),           //
                               MHD_OPTION_NOTIFY_CONNECTION, &notifyConnection, this,    //
                               MHD_OPTION_CONNECTION_TIMEOUT, idleSeconds() + 1,         //
                               MHD_OPTION_CONNECTION_MEMORY_LIMIT, limits.headMemory,    //
                               MHD_OPTION_UNESCAPE_CALLBACK, &keepEscapes, nullptr,      //
                               MHD_OPTION_URI_LOG_CALLBACK, &startExchange, this,        //
                               MHD_OPTION_NOTIFY_COMPLETED, &endExchange, this,          //
                               MHD_OPTION_ARRAY, options.data(),                         //
                               MHD_OPTION_END);
    if (daemon_ == nullptr)
        throw ListenError(secure ? "the HTTPS server cannot be started with this certificate and key"
                                 : "the HTTP server cannot be started");
    socket.release();  // the daemon closes it
}

HttpServer::Connections::~Connections() {
    stopping_ = true;
    queue_.close();
    endStreams();
    const auto deadline = Exchange::Clock::now() + farewell;
    while (unsent_ > 0 && Exchange::Clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    MHD_stop_daemon(daemon_);
}

void HttpServer::Connections::notifyConnection(void* self, MHD_Connection* connection, void** watched,
                                               MHD_ConnectionNotificationCode code) {
    ConnectionWatch& watch = static_cast<Connections*>(self)->watch_;
    if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
        if (*watched != nullptr) watch.close(static_cast<ConnectionWatch::Connection*>(*watched));
        return;
    }
    // A time of its own, even though it is the same for all, has the library go on with an answer before it
    // reads what comes next: what is the end, where the client has ended its side, at which it would drop the
    // answer.
    MHD_set_connection_option(connection, MHD_CONNECTION_OPTION_TIMEOUT,
                              static_cast<Connections*>(self)->idleSeconds());
    const int socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
    try {
        *watched = watch.open(
            socket, MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS)->client_addr);
    } catch (const std::exception& error) {
        shutdown(socket, SHUT_RDWR);
        serverLogger.error("a connection cannot be watched: %s", error.what());
    }
}

void* HttpServer::Connections::startExchange(void*, const char* target, MHD_Connection*) {
    try {
        return new Exchange(target);
    } catch (...) {
        return nullptr;
    }
}

MHD_Result HttpServer::Connections::continueExchange(void* self, MHD_Connection* connection, const char*,
                                                     const char* method, const char*, const char* bytes,
                                                     std::size_t* count, void** exchange) {
    if (*exchange == nullptr) return MHD_NO;
    try {
        const std::string_view piece(bytes, bytes == nullptr ? 0 : *count);
        *count = 0;
        return static_cast<Connections*>(self)->receive(connection, *static_cast<Exchange*>(*exchange),
                                                        method, piece);
    } catch (const std::exception& error) {
        serverLogger.error("a request cannot be answered: %s", error.what());
    } catch (...) {
        serverLogger.error("a request cannot be answered");
    }
    return MHD_NO;
}

void HttpServer::Connections::endExchange(void* self, MHD_Connection* connection, void** exchange,
                                          MHD_RequestTerminationCode) {
    auto* const connections = static_cast<Connections*>(self);
    const std::unique_ptr<Exchange> ended(static_cast<Exchange*>(*exchange));
    *exchange = nullptr;
    if (ConnectionWatch::Connection* const watched = watchedOf(connection))
        connections->watch_.answerEnds(*watched);
    if (ended && ended->response) --connections->unsent_;
}

MHD_Result HttpServer::Connections::receive(MHD_Connection* connection, Exchange& exchange,
                                            const char* method, std::string_view bytes) {
    if (exchange.lost) return MHD_NO;
    if (exchange.response) return send(connection, exchange);
    if (!exchange.begun()) return begin(connection, exchange, method);
    if (!bytes.empty()) return receiveBody(connection, exchange, bytes);
    return watch_.isEnding(*watchedOf(connection)) ? MHD_NO : answer(connection, exchange);
}

MHD_Result HttpServer::Connections::begin(MHD_Connection* connection, Exchange& exchange,
                                          const char* method) {
    ConnectionWatch::Connection* const watched = watchedOf(connection);
    if (watched == nullptr || watch_.isEnding(*watched)) return MHD_NO;
    exchange.begin(method, headersOf(connection));
    if (exchange.codingIsUnknown()) {
        return reply(connection, exchange, textResponse(501, "a body may only be coded in chunks"));
    }
    if (!watch_.headEnds(*watched, exchange.mostKept())) {
        WebResponse response = textResponse(503, "the set holds as many long bodies as it may");
        setHeader(response.headers, "Retry-After", "5");
        return reply(connection, exchange, std::move(response));
    }
    exchange.expectBody();
    return leavesBodyUnread(exchange) ? answer(connection, exchange) : MHD_YES;
}

MHD_Result HttpServer::Connections::receiveBody(MHD_Connection* connection, Exchange& exchange,
                                                std::string_view bytes) {
    exchange.receive(bytes);
    const bool stated = exchange.statedLength().has_value();
    if (!stated && exchange.received() > limits_.chunkedBody) watch_.refuse(*watchedOf(connection), 413);
    if (!watch_.isEnding(*watchedOf(connection))) return MHD_YES;
    return exchange.receivedInVain(bytes.size()) > limits_.statedBody ? MHD_NO : MHD_YES;
}

bool HttpServer::Connections::leavesBodyUnread(const Exchange& exchange) const {
    const std::uint64_t stated = exchange.statedLength().value_or(0);
    return stated > maximumRequestBody && (exchange.clientWaits() || stated > limits_.statedBody);
}

MHD_Result HttpServer::Connections::answer(MHD_Connection* connection, Exchange& exchange) {
    const WebRequest& request = exchange.finish();
    watch_.requestEnds(*watchedOf(connection));
    try {
        if (auto response = handler_.answerAtOnce(request)) {
            return reply(connection, exchange, std::move(*response));
        }
    } catch (const std::exception& error) {
        serverLogger.error("%s %s: %s", request.method, request.path, error.what());
        return reply(connection, exchange, textResponse(500, "internal error"));
    }
    MHD_suspend_connection(connection);
    try {
        const bool taken = queue_.post(ConnectionWatch::clientOf(*watchedOf(connection)),
                                       [this, connection, &exchange] { answerInTurn(connection, exchange); });
        if (!taken) answerInTurn(connection, exchange);
    } catch (...) {
        // The library does not close a connection that rests.
        exchange.lost = true;
        MHD_resume_connection(connection);
    }
    return MHD_YES;
}

void HttpServer::Connections::answerInTurn(MHD_Connection* connection, Exchange& exchange) noexcept {
    const WebRequest& request = exchange.request();
    try {
        try {
            exchange.response =
                stopping_ ? textResponse(503, "the set is stopping") : handler_.answerInTurn(request);
        } catch (const std::exception& error) {
            serverLogger.error("%s %s: %s", request.method, request.path, error.what());
            exchange.response = textResponse(500, "internal error");
        }
        ++unsent_;
    } catch (...) {
        exchange.lost = true;  // without memory to say so
    }
    exchange.dropBody();
    watch_.bodyIsGone(*watchedOf(connection));
    MHD_resume_connection(connection);
}

MHD_Result HttpServer::Connections::reply(MHD_Connection* connection, Exchange& exchange,
                                          WebResponse response) {
    exchange.response = std::move(response);
    ++unsent_;
    return send(connection, exchange);
}

MHD_Result HttpServer::Connections::send(MHD_Connection* connection, Exchange& exchange) {
    const int status = exchange.response->status;
    const LibraryResponse response = makeResponse(connection, *exchange.response);
    if (!response) return MHD_NO;
    addHeaders(response.get(), exchange.response->headers);
    return MHD_queue_response(connection, static_cast<unsigned>(status), response.get());
}

LibraryResponse HttpServer::Connections::makeResponse(MHD_Connection* connection, WebResponse& response) {
    ConnectionWatch::Connection& watched = *watchedOf(connection);
    if (response.stream) {
        watch_.streamBegins(watched);
        return makeStreamedResponse(connection, response.stream);
    }
    const std::shared_ptr<const std::string> body = takeBody(response);
    watch_.answerBegins(watched, body);
    return makeWholeResponse(body);
}

LibraryResponse HttpServer::Connections::makeStreamedResponse(MHD_Connection* connection,
                                                              const std::shared_ptr<BodyStream>& stream) {
    const auto body = std::make_shared<StreamedBody>(stream, connection, [this](StreamedBody* gone) {
        const std::lock_guard lock(streamsMutex_);
        std::erase_if(streams_, [gone](const auto& kept) { return kept.get() == gone; });
    });
    LibraryResponse response(body->makeResponse());
    const std::lock_guard lock(streamsMutex_);
    if (stopping_) return nullptr;
    if (response) streams_.push_back(body);
    return response;
}

// A connection that rests must not be there when the daemon stops.
void HttpServer::Connections::endStreams() {
    const std::lock_guard lock(streamsMutex_);
    for (const auto& body : streams_)
        body->end();
}

HttpServer::HttpServer(ListenSocket socket, WebHandler& handler, const Limits& limits)
    : connections_(std::make_unique<Connections>(std::move(socket), handler, limits)) {}

HttpServer::HttpServer(ListenSocket socket, WebHandler& handler)
    : HttpServer(std::move(socket), handler, Limits()) {}

HttpServer::~HttpServer() = default;

}  // namespace epgset
