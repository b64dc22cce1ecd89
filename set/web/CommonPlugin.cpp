#include "host/CommonPlugin.h"

void CommonPlugin::writeError(Container::HttpResponse& response, int status, const std::string& message,
                              const std::vector<std::pair<std::string, std::string>>* extraHeaders) {
    response.setStatus(status);
    response.setHeader("Content-Type", "text/plain");
    if (extraHeaders != nullptr) {
        for (const auto& [name, value] : *extraHeaders) {
            response.setHeader(name, value);
        }
    }
    response.commitHeaders();
    response.getOutputStream() << message;
}
