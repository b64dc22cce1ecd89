#include "tests/support/GuideServer.h"

#include <utility>

#include "set/web/EntityTag.h"

namespace epgset::test {

GuideServer::GuideServer() {
    ListenSocket socket("127.0.0.1", 0);
    url_ = socket.url();
    server_ = std::make_unique<HttpServer>(std::move(socket), static_cast<WebHandler&>(*this));
}

GuideServer::~GuideServer() = default;

void GuideServer::serve(std::string text) {
    const std::lock_guard lock(mutex_);
    text_ = std::move(text);
}

void GuideServer::answer(int status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
}

std::vector<int> GuideServer::answered() const {
    const std::lock_guard lock(mutex_);
    return answered_;
}

std::optional<WebResponse> GuideServer::answerAtOnce(const WebRequest& request) {
    WebResponse response;
    if (request.path == "/redirect") {
        response.status = 302;
        setHeader(response.headers, "Location", url());
        setHeader(response.headers, "ETag", "\"of the redirection\"");
        return response;
    }
    const std::lock_guard lock(mutex_);
    response.status = status_;
    setHeader(response.headers, "Content-Type", "application/xml");
    response.body = text_;
    tagEntity(request, response);
    answerConditionally(request, response);
    answered_.push_back(response.status);
    return response;
}

WebResponse GuideServer::answerInTurn(const WebRequest&) {
    return textResponse(500, "not reached");
}

}  // namespace epgset::test
