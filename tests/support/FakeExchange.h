// A request and a response of the host, for tests of the plug-in's frame.
#pragma once

#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/HttpRequest.h"
#include "host/HttpResponse.h"

namespace epgtest {

/// A request made of plain data. The content length is the body's unless one is stated.
class FakeRequest final : public Container::HttpRequest, public Container::Uri {
public:
    FakeRequest(std::string method, std::string path, std::string query = "")
        : method_(std::move(method)), path_(std::move(path)), query_(std::move(query)) {}

    FakeRequest& withVariable(const std::string& name, const std::string& value) {
        variables_[name] = value;
        return *this;
    }
    FakeRequest& withBody(const std::string& body) {
        body_.str(body);
        length_ = static_cast<int>(body.size());
        return *this;
    }
    FakeRequest& withContentLength(int length) {
        length_ = length;
        return *this;
    }

    void getMethod(std::string& method) const override { method = method_; }
    void getHeader(const std::string& name, std::string& value) const override {
        const auto found = variables_.find(name);
        value = found == variables_.end() ? "" : found->second;
    }
    const Container::Uri& getUri() const override { return *this; }
    std::istream& getInputStream() override { return body_; }
    int getContentLength() const override { return length_; }
    void getPath(std::string& path) const override { path = path_; }

    void getFile(std::string& file) const override { file = "/ws/" + path_; }
    void getQuery(std::string& query) const override { query = query_; }

private:
    std::string method_;
    std::string path_;
    std::string query_;
    std::map<std::string, std::string> variables_;
    std::istringstream body_;
    int length_ = 0;
};

/// A response that keeps what was done to it, in order.
class RecordingResponse final : public Container::HttpResponse {
public:
    void setHeader(const std::string& name, const std::string& value) override {
        headers[name] = value;
        calls.push_back("setHeader " + name + ": " + value);
    }
    void setStatus(int value) override {
        status = value;
        calls.push_back("setStatus " + std::to_string(value));
    }
    std::ostream& getOutputStream() override {
        calls.push_back("getOutputStream");
        return output_;
    }
    void commitHeaders() override { calls.push_back("commitHeaders"); }

    std::string body() const { return output_.str(); }

    static constexpr int unset = std::numeric_limits<int>::min();
    int status = unset;
    std::map<std::string, std::string> headers;
    std::vector<std::string> calls;

private:
    std::ostringstream output_;
};

}  // namespace epgtest
