// Entity tags: a client that already has an answer is told so instead of being sent it again.
#pragma once

#include <string>
#include <string_view>

#include "set/web/WebMessage.h"

namespace epgset {

/// The strong entity tag, quotes included, of a body with its content type.
std::string entityTag(std::string_view contentType, std::string_view body);

/// Whether the value of an If-None-Match header names `tag`: a list of tags, weak or strong, or "*".
/// What follows the first thing that is no tag does not count.
bool namesTag(std::string_view ifNoneMatch, std::string_view tag);

/// Gives the 200 answer to a GET its ETag.
void tagEntity(const WebRequest& request, WebResponse& response);

/// Makes an answer that has its ETag a 304 when the request's If-None-Match names it. The 304 keeps the body,
/// which is not sent: its length is told as that of the 200. Other answers stay as they are.
void answerConditionally(const WebRequest& request, WebResponse& response);

}  // namespace epgset
