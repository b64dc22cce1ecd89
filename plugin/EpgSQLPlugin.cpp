// The plug-in's frame: entry point, descriptor, request handler and maintenance callback.
#include "plugin/EpgSQLPlugin.h"

#include <cstdint>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "host/CommonPlugin.h"
#include "host/DomainException.h"
#include "host/Plugin.h"

const Container::Logger frameLogger = Container::Logger::logger("EpgSQLPlugin");

namespace {

std::uintptr_t hostContextWord = 0;  // kept for the host, never read again

void traceRequest(const Container::HttpRequest& request) {
    if (frameLogger.isTraceEnabled()) {
        std::string method;
        request.getMethod(method);
        frameLogger.trace("Method - %s", method.c_str());
    }
    if (frameLogger.isTraceEnabled()) {
        std::string file;
        request.getUri().getFile(file);
        frameLogger.trace("File - %s", file.c_str());
    }
    if (frameLogger.isTraceEnabled()) frameLogger.trace("");  // a blank separator line, on purpose
}

int handleRequest(Container::HttpRequest& request, Container::HttpResponse& response) {
    try {
        traceRequest(request);
        const int answered = BridgeToWebConvIF(request, response);
        if (answered != 0) return answered;
        CommonPlugin::writeError(response, 404, "Unable to locate URL, so go bang", nullptr);
        return 0;
    } catch (const Container::DomainException& exception) {
        frameLogger.error("DomainException error occurred %s", exception.what());
        response.setHeader("Content-Type", "text/plain");
        response.setStatus(500);
        response.commitHeaders();
        response.getOutputStream() << exception.what();
        throw;  // the client is answered and the host still learns of it, by design
    }
}

/// Seconds between two calls of onTimer.
int getTimerPeriod() {
    return 14400;
}

void onTimer() {
    const Container::SharedPtr<EpgSQLPluginVexmoor> plugin = EpgSQLPluginVexmoor::Instance();
    plugin->rebuildDB(false);
    frameLogger.debug("Checking to see if the EPG DB rquires an udpate\n");  // after the rebuild; spelled so
}

constexpr PluginDescriptor descriptor = {1, 0, 0, 0, handleRequest, 0, getTimerPeriod, 0, 0, onTimer, 0};

}  // namespace

extern "C" __attribute__((visibility("default"))) int pluginMainEntry(
    std::uintptr_t hostContext, const PluginDescriptor** descriptorOut) {
    hostContextWord = hostContext;
    *descriptorOut = nullptr;
    *descriptorOut = &descriptor;
    frameLogger.trace("PluginMainEntry");
    return 0;
}
