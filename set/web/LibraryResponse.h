// Answers in the form of the HTTP library.
#pragma once

#include <microhttpd.h>

#include <memory>
#include <string>

#include "set/web/WebMessage.h"

namespace epgset {

struct DestroyLibraryResponse {
    void operator()(MHD_Response* response) const { MHD_destroy_response(response); }
};
using LibraryResponse = std::unique_ptr<MHD_Response, DestroyLibraryResponse>;

/// Takes the body of a response that is known: an empty one where its status has none.
std::shared_ptr<const std::string> takeBody(WebResponse& response);

/// The library's form of a response with that body, which it holds until it is sent. Null without memory.
LibraryResponse makeWholeResponse(const std::shared_ptr<const std::string>& held);

/// Adds headers; one that cannot be sent in a line is left out and logged. Throws std::bad_alloc.
void addHeaders(MHD_Response* made, const WebHeaders& headers);

}  // namespace epgset
