// A connection that any bytes can be sent over.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace epgset::test {

/// One TCP connection to a test's server. Used by one thread.
class RawConnection {
public:
    /// `url` is the server's, such as "http://127.0.0.1:8080/"; `from` the client's own IPv4 address, one of
    /// 127.0.0.0/8, where it matters. Throws std::runtime_error.
    explicit RawConnection(const std::string& url, const std::string& from = {});
    ~RawConnection();
    /// The socket, for a test that looks after many connections itself.
    int descriptor() const { return socket_; }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    /// Sends all bytes; false when the server has closed the connection.
    bool send(std::string_view bytes);

    /// Tells the server that nothing more comes.
    void endSending();

    /// Closes the connection at once, with a reset.
    void reset();

    /// What the server sends until it closes the connection or until `limit` has passed.
    std::string receiveAll(std::chrono::milliseconds limit = std::chrono::seconds(20));

    /// What the server sends until that ends in `mark` or the connection is closed; at most 20 s.
    std::string receiveUntil(std::string_view mark);

private:
    int socket_;
};

/// The status of the first answer in what a server sent; 0 when it begins with none.
int statusOf(std::string_view answer);

}  // namespace epgset::test
