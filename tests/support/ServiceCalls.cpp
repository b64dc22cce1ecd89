#include "tests/support/ServiceCalls.h"

#include "Vexmoor/EpgSQLPluginVexmoor.h"

// The linker leads the frame's calls here (--wrap) and calls of the real functions back to the class. Member
// functions are plain functions whose first argument is the object.
#define WRAPPED(name) __asm__("__wrap_" name)
#define REAL(name) __asm__("__real_" name)
#define QUERY_SYMBOL                                                                            \
    "_ZN19EpgSQLPluginVexmoor18ExecuteClientQueryEPvPKcP22TARNO_rstr_uri_path_stP23TARNO_rstr_" \
    "uri_query_stPciS7_"
#define COMMAND_SYMBOL "_ZN19EpgSQLPluginVexmoor20ExecuteClientCommandEP23TARNO_rstr_uri_query_stPv"
#define CHECK_SYMBOL "_ZN19EpgSQLPluginVexmoor20checkDB_UpdateNeededEv"
#define REBUILD_SYMBOL "_ZN19EpgSQLPluginVexmoor9rebuildDBEb"

using Plugin = EpgSQLPluginVexmoor;
using Path = TARNO_rstr_uri_path_st;
using Query = TARNO_rstr_uri_query_st;

int realQuery(Plugin*, void*, const char*, Path*, Query*, char*, int, char*) REAL(QUERY_SYMBOL);
int wrappedQuery(Plugin*, void*, const char*, Path*, Query*, char*, int, char*) WRAPPED(QUERY_SYMBOL);
int realCommand(Plugin*, Query*, void*) REAL(COMMAND_SYMBOL);
int wrappedCommand(Plugin*, Query*, void*) WRAPPED(COMMAND_SYMBOL);
bool realCheck(Plugin*) REAL(CHECK_SYMBOL);
bool wrappedCheck(Plugin*) WRAPPED(CHECK_SYMBOL);
void realRebuild(Plugin*, bool) REAL(REBUILD_SYMBOL);
void wrappedRebuild(Plugin*, bool) WRAPPED(REBUILD_SYMBOL);

namespace {

epgtest::ServiceCalls* listener = nullptr;

}  // namespace

int wrappedQuery(Plugin* plugin, void* document, const char* method, Path* path, Query* query, char* body,
                 int bodyLength, char* location) {
    if (listener != nullptr) {
        listener->add("query");
        if (listener->query)
            return listener->query({document, method, path, query, body, bodyLength, location});
    }
    return realQuery(plugin, document, method, path, query, body, bodyLength, location);
}

int wrappedCommand(Plugin* plugin, Query* query, void* document) {
    if (listener != nullptr) {
        listener->add("command");
        if (listener->command) return listener->command(query, document);
    }
    return realCommand(plugin, query, document);
}

bool wrappedCheck(Plugin* plugin) {
    if (listener != nullptr) {
        listener->add("check");
        if (listener->check) return listener->check();
    }
    return realCheck(plugin);
}

void wrappedRebuild(Plugin* plugin, bool forced) {
    if (listener != nullptr) {
        listener->add(forced ? "rebuild forced" : "rebuild");
        if (listener->rebuild) return listener->rebuild(forced);
    }
    realRebuild(plugin, forced);
}

namespace epgtest {

ServiceCalls::ServiceCalls(std::vector<std::string>& lines) : lines_(lines) {
    listener = this;
}

ServiceCalls::~ServiceCalls() {
    listener = nullptr;
}

}  // namespace epgtest
