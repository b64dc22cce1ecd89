// A handler behind the rules of access.
#pragma once

#include "set/web/AccessRules.h"
#include "set/web/WebHandler.h"

namespace epgset {

/// Hands on what the rules let through.
class GuardedHandler : public WebHandler {
public:
    /// The handler must outlive the object.
    GuardedHandler(WebHandler& handler, AccessSettings settings)
        : handler_(handler), rules_(std::move(settings)) {}

    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override {
        std::optional<WebResponse> response = rules_.answer(request);
        if (!response) response = handler_.answerAtOnce(request);
        if (response) rules_.allowReading(request, *response);
        return response;
    }

    WebResponse answerInTurn(const WebRequest& request) override {
        WebResponse response = handler_.answerInTurn(request);
        rules_.allowReading(request, response);
        return response;
    }

private:
    WebHandler& handler_;
    const AccessRules rules_;
};

}  // namespace epgset
