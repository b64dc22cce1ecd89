// The request and response objects that a plug-in sees, over plain data.
#pragma once

#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>

#include "host/HttpRequest.h"
#include "host/HttpResponse.h"
#include "set/web/WebMessage.h"

namespace epgset {

/// A WebRequest as a plug-in reads it. The request must outlive it.
class PluginRequest final : public Container::HttpRequest, private Container::Uri {
public:
    /// `path` is the path below the plug-in's mount point, still percent-encoded.
    PluginRequest(const WebRequest& request, std::string path);

    void getMethod(std::string& method) const override;
    void getHeader(const std::string& name, std::string& value) const override;
    const Container::Uri& getUri() const override;
    std::istream& getInputStream() override;
    int getContentLength() const override;
    void getPath(std::string& path) const override;

private:
    void getFile(std::string& file) const override;
    void getQuery(std::string& query) const override;

    const WebRequest& request_;
    std::string path_;
    std::istringstream body_;
};

/// Collects what is written to a stream, a long text in one piece.
class TextCollector final : public std::streambuf {
public:
    bool isEmpty() const { return text_.empty(); }

    /// What was written, which is not here any more afterwards.
    std::string take() { return std::exchange(text_, {}); }

private:
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    int_type overflow(int_type character) override;

    std::string text_;
};

/// Records what a plug-in writes.
class PluginResponse final : public Container::HttpResponse {
public:
    void setHeader(const std::string& name, const std::string& value) override;
    void setStatus(int status) override;
    std::ostream& getOutputStream() override;
    void commitHeaders() override;

    /// Whether nothing at all was set or written.
    bool untouched() const;

    /// What is to be sent: an empty 404 when the response is untouched; 500 in place of a status outside
    /// 100 to 599, and of 1xx, which cannot end a request; 500 in place of a body that could not be
    /// written, as without memory. The object is empty afterwards.
    WebResponse finish();

private:
    bool touched_ = false;
    WebResponse response_;
    TextCollector body_;
    std::ostream stream_{&body_};
};

}  // namespace epgset
