// The host's HTTP response, as a plug-in writes it.
#pragma once

#include <ostream>
#include <string>

namespace Container {

/// One HTTP response. Owned by the host and valid until the request handler returns; used by one
/// thread. The order of the virtual operations is part of the binary interface.
class HttpResponse {
public:
    /// Sets the response header `name`, replacing an earlier value.
    virtual void setHeader(const std::string& name, const std::string& value) = 0;

    /// Sets the HTTP status. What is no final status (200 to 599) is sent as 500.
    virtual void setStatus(int status) = 0;

    /// The stream that the body is written to, from its start to its end; owned by the response.
    virtual std::ostream& getOutputStream() = 0;

    /// Ends the headers: called once, after the status and all headers, before any of the body.
    virtual void commitHeaders() = 0;

protected:
    ~HttpResponse() = default;
};

}  // namespace Container
