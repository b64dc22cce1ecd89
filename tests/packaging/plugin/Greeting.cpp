// The least that a plug-in is: one exported function, one descriptor, one answer.
#include <string>

#include "host/CommonPlugin.h"
#include "host/Connection.h"
#include "host/Plugin.h"
#include "host/SharedPtr.h"

namespace {

int answer(Container::HttpRequest& request, Container::HttpResponse& response) {
    std::string path;
    request.getPath(path);
    if (path == "greeting") {
        response.setStatus(200);
        response.setHeader("Content-Type", "text/plain");
        response.commitHeaders();
        response.getOutputStream() << "hello from " << path;
    } else {
        CommonPlugin::writeError(response, 404, "no such path", nullptr);
    }
    return 1;
}

int period() {
    return 3600;
}

void maintain() {
    // What a plug-in keeps in a database goes through the host's connection.
    const Container::SharedPtr<Connection> connection(new Connection);
    connection->open(":memory:");
}

const PluginDescriptor descriptor = {1, 0, 0, 0, answer, 0, period, 0, 0, maintain, 0};

}  // namespace

extern "C" __attribute__((visibility("default"))) int pluginMainEntry(std::uintptr_t /*context*/,
                                                                      const PluginDescriptor** out) {
    *out = &descriptor;
    return 0;
}
