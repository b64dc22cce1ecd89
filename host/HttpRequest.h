// The host's view of one HTTP request, as handed to a plug-in.
#pragma once

#include <istream>
#include <string>

namespace Container {

/// The request's URI. The order of the virtual operations is part of the binary interface.
class Uri {
public:
    /// Fills `file` with the requested file name; used for logging only.
    virtual void getFile(std::string& file) const = 0;

    /// Fills `query` with the raw query text, without "?"; empty when there is none.
    virtual void getQuery(std::string& query) const = 0;

protected:
    ~Uri() = default;  // not virtual: a virtual destructor would take a slot
};

/// One HTTP request. Owned by the host and valid until the request handler returns; used by one
/// thread. The order of the virtual operations is part of the binary interface.
class HttpRequest {
public:
    /// Fills `method` with the HTTP method, such as "GET"; empty when the request has none.
    virtual void getMethod(std::string& method) const = 0;

    /// Fills `value` with the request variable `name`, a CGI-style name such as "HTTP_ACCEPT";
    /// empty when the request has no such variable.
    virtual void getHeader(const std::string& name, std::string& value) const = 0;

    /// The request's URI; owned by the request.
    virtual const Uri& getUri() const = 0;

    /// The stream that the body is read from; owned by the request.
    virtual std::istream& getInputStream() = 0;

    /// Length of the body in bytes; negative when it is unknown, invalid or above the host's limit.
    virtual int getContentLength() const = 0;

    /// Fills `path` with the path below the plug-in's mount point, without a leading "/".
    virtual void getPath(std::string& path) const = 0;

protected:
    ~HttpRequest() = default;
};

}  // namespace Container
