// A web server that guides are fetched from.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "set/web/HttpServer.h"

namespace epgset::test {

/// Serves one text on loopback, with an ETag, and answers 304 to a client that has it. Used by any thread.
class GuideServer : private WebHandler {
public:
    GuideServer();
    ~GuideServer() override;

    /// Where the text is.
    std::string url() const { return url_ + "guide.xml"; }
    /// Where the client is sent on to it.
    std::string redirectedUrl() const { return url_ + "redirect"; }

    void serve(std::string text);
    /// Answers that status from now on; 200: as it should.
    void answer(int status);

    /// The statuses that were answered so far, redirections left out.
    std::vector<int> answered() const;

private:
    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override;
    WebResponse answerInTurn(const WebRequest& request) override;

    mutable std::mutex mutex_;
    std::string text_;           ///< guarded by mutex_
    int status_ = 200;           ///< guarded by mutex_
    std::vector<int> answered_;  ///< guarded by mutex_
    std::string url_;
    std::unique_ptr<HttpServer> server_;
};

}  // namespace epgset::test
