// What stands at which path of the set's web server.
#pragma once

#include "set/events/EventRing.h"
#include "set/web/AnswerCache.h"
#include "set/web/EventFeed.h"
#include "set/web/PageFiles.h"
#include "set/web/PluginHost.h"
#include "set/web/StatusDocument.h"
#include "set/web/WebHandler.h"

namespace epgset {

/// Routes requests: below "/ws" to the plug-in, in turn; to the set's own resources, at once.
class SetRoutes : public WebHandler {
public:
    /// The plug-in's host must outlive the routes. Without files of a page, a simple one stands at the root.
    /// `answerCache` is how many bytes of answers are kept.
    SetRoutes(PluginHost& plugin, SetFacts facts, PageFiles page = {}, std::size_t answerCache = 0);

    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override;
    WebResponse answerInTurn(const WebRequest& request) override;

private:
    std::optional<WebResponse> route(const WebRequest& request);
    std::optional<WebResponse> keptAnswer(const WebRequest& request);
    WebResponse eventStream(const WebRequest& request);

    PluginHost& plugin_;
    const SetFacts facts_;
    const PageFiles page_;
    EventFeed feed_{events()};
    AnswerCache answers_;
};

}  // namespace epgset
