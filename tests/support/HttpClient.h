// An HTTP client for tests.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace epgset::test {

/// What a server answered.
struct HttpAnswer {
    int status = 0;
    std::map<std::string, std::string> headers;  ///< names in lower case; the last line of a name counts
    std::string body;

    bool has(const std::string& header) const { return headers.contains(header); }

    /// The value of a header, its name in lower case; empty when there is none.
    std::string header(const std::string& name) const;
};

/// Sends requests to one server, over one connection where the server keeps it. Used by one thread. What
/// is no HTTP answer throws std::runtime_error. What was answered is recorded (ExchangeRecord.h).
class HttpClient {
public:
    using Headers = std::vector<std::string>;  ///< lines such as "Accept: text/html"

    /// `base` is the server's URL, with or without a slash at its end; `from` the client's own address, where
    /// it matters.
    explicit HttpClient(std::string base, std::string from = {});
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// Trusts a server that has the certificate of this PEM file, and no other.
    void trust(std::string certificateFile) { certificateFile_ = std::move(certificateFile); }

    /// Sends a request; `target` is sent as it stands and begins with "/".
    HttpAnswer request(const std::string& method, const std::string& target, const Headers& headers = {});

    /// The same with a body, an empty one included.
    HttpAnswer send(const std::string& method, const std::string& target, const std::string& body,
                    const Headers& headers = {});

    /// Reads an answer that does not end, until its body holds `until`.
    HttpAnswer listen(const std::string& target, const std::string& until, const Headers& headers = {});

    HttpAnswer get(const std::string& target, const Headers& headers = {}) {
        return request("GET", target, headers);
    }
    HttpAnswer head(const std::string& target) { return request("HEAD", target); }

    /// How many connections the requests so far took.
    long connectionsMade() const { return connectionsMade_; }

private:
    HttpAnswer perform(const std::string& method, const std::string& target, const Headers& headers,
                       const std::string* body, const std::string* until);

    struct Handle;
    std::string base_;
    std::string from_;
    std::string certificateFile_;  ///< empty: the system's
    std::unique_ptr<Handle> handle_;
    long connectionsMade_ = 0;
};

}  // namespace epgset::test
