#include "set/web/LibraryResponse.h"

#include <new>
#include <string_view>
#include <utility>

#include "host/Logger.h"

namespace epgset {
namespace {

using Body = std::shared_ptr<const std::string>;

// Made when the library is loaded: there may be no memory for it when it is needed.
const Container::Logger logger = Container::Logger::logger("set/web");

/// Whether an answer has a body or, as 304, tells at least how long that of the 200 would be. The library
/// sends none with 304.
bool hasLength(int status) {
    return status >= 200 && status != 204;
}

/// Whether a header can be sent at all: one in one line.
bool isHeader(const std::string& name, const std::string& value) {
    constexpr std::string_view refused = "\t\r\n";
    return !name.empty() && !value.empty() && name.find_first_of(refused) == std::string::npos &&
           value.find_first_of(refused) == std::string::npos;
}

}  // namespace

std::shared_ptr<const std::string> takeBody(WebResponse& response) {
    if (!hasLength(response.status)) return std::make_shared<const std::string>();
    if (response.sharedBody) return std::move(response.sharedBody);
    return std::make_shared<const std::string>(std::move(response.body));
}

LibraryResponse makeWholeResponse(const std::shared_ptr<const std::string>& held) {
    auto body = std::make_unique<Body>(held);
    // The library only reads what it is given.
    char* const bytes = const_cast<char*>((*body)->data());
    LibraryResponse made(MHD_create_response_from_buffer_with_free_callback_cls(
        (*body)->size(), bytes, [](void* owned) { delete static_cast<Body*>(owned); }, body.get()));
    if (made) static_cast<void>(body.release());
    return made;
}

void addHeaders(MHD_Response* made, const WebHeaders& headers) {
    for (const auto& [name, value] : headers) {
        if (MHD_add_response_header(made, name.c_str(), value.c_str()) == MHD_YES) continue;
        if (isHeader(name, value)) throw std::bad_alloc();
        logger.warning("a response header cannot be sent: %s: %s", name, value);
    }
}

}  // namespace epgset
