// What an HTTP server answers requests with.
#pragma once

#include <optional>

#include "set/web/WebMessage.h"

namespace epgset {

/// Answers requests. An HttpServer asks answerAtOnce first and, where that leaves the request open,
/// answerInTurn. What either throws is answered 500.
class WebHandler {
public:
    virtual ~WebHandler() = default;

    /// Answers what needs no waiting; nothing for other requests. Called from several threads at a time.
    virtual std::optional<WebResponse> answerAtOnce(const WebRequest& request) = 0;

    /// Answers what may take its time. Called for one request at a time: those of one
    /// client address in the order of arrival, and one of each address in turn.
    virtual WebResponse answerInTurn(const WebRequest& request) = 0;
};

}  // namespace epgset
