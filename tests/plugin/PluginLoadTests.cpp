#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/DomainException.h"
#include "host/Mutex.h"
#include "host/Plugin.h"
#include "set/database/DatabaseFaults.h"
#include "set/log/LogCapture.h"
#include "set/middleware/ManualClock.h"
#include "tests/support/FakeExchange.h"
#include "tests/support/ForwardingTelevision.h"
#include "tests/support/TestGuide.h"

namespace {

/// What happened to mutexes, in order: they are numbered as they are made.
std::vector<std::string>* mutexCalls = nullptr;
std::map<const void*, int> mutexNumbers;

void addMutexCall(const std::string& call, const void* mutex) {
    if (mutexCalls != nullptr) mutexCalls->push_back(call + " " + std::to_string(mutexNumbers[mutex]));
}

/// Loggers that were there before any plug-in was loaded.
const std::vector<std::string> hostLoggers = epgset::LogControl::loggerNames();

std::string newestLogger() {
    const auto names = epgset::LogControl::loggerNames();
    return names.size() == hostLoggers.size() ? "none" : names.back();
}

}  // namespace

// These stand before the container's own for the whole program, the plug-in included.
namespace Container {

Mutex::Mutex() {
    if (mutexCalls == nullptr) return;
    const int number = static_cast<int>(mutexNumbers.size()) + 1;
    mutexNumbers[this] = number;
    addMutexCall("after " + newestLogger() + " make", this);
}

Mutex::~Mutex() {
    addMutexCall("destroy", this);
}

void Mutex::lock() {
    m_mutex.lock();
    addMutexCall("lock", this);
}

void Mutex::unlock() {
    addMutexCall("unlock", this);
    m_mutex.unlock();
}

}  // namespace Container

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The plug-in's library, loaded as the host loads it.
class Library {
public:
    Library() : handle_(dlopen(EPG_PLUGIN, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) throw std::runtime_error(dlerror());
    }
    ~Library() { unload(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void unload() {
        if (handle_ != nullptr) dlclose(handle_);
        handle_ = nullptr;
    }

    const PluginDescriptor* descriptor(std::uintptr_t context = 0) const {
        const auto entry = reinterpret_cast<PluginMainEntry>(dlsym(handle_, "pluginMainEntry"));
        if (entry == nullptr) throw std::runtime_error(dlerror());
        const PluginDescriptor* descriptor = nullptr;
        EXPECT_EQ(entry(context, &descriptor), 0);
        return descriptor;
    }

private:
    void* handle_;
};

/// Loads the library for the first time in the process, once: the names of loggers are given out then.
const std::vector<std::string>& firstLoad() {
    static const std::vector<std::string> calls = [] {
        std::vector<std::string> made;
        mutexCalls = &made;
        {
            const epgset::LogCapture quiet;
            const Library library;
            made.push_back("after " + newestLogger() + " loaded");
        }
        mutexCalls = nullptr;
        mutexNumbers.clear();
        return made;
    }();
    return calls;
}

class PluginLoad : public testing::Test {
protected:
    static constexpr std::int64_t startTime = 1'787'443'200;

    static void SetUpTestSuite() { firstLoad(); }

    PluginLoad() {
        epgset::useClock(&clock);
        useGuide("Seven");
        mutexCalls = &locks;
    }
    ~PluginLoad() override {
        library.reset();
        mutexCalls = nullptr;
        mutexNumbers.clear();
        TestGuide().use();
        epgset::useClock(nullptr);
    }

    static void useGuide(const std::string& channel) {
        TestGuide guide;
        guide.programmes(guide.channel(Air, 7, 0, channel), 2);
        guide.use();
    }

    const PluginDescriptor& load() {
        library.emplace();
        return *library->descriptor();
    }

    int get(const PluginDescriptor& descriptor, const std::string& path) {
        FakeRequest request("GET", path);
        return descriptor.handleRequest(request, response);
    }

    epgset::ManualClock clock{startTime};
    epgset::LogCapture log;
    std::vector<std::string> locks;
    std::optional<Library> library;
    RecordingResponse response;
};

TEST_F(PluginLoad, MakesItsStaticObjectsInOrderAndDestroysThemInReverse) {
    const std::string frame = "EpgSQLPlugin";
    const std::string service = "Vexmoor/EpgSQLPluginVexmoor";
    const std::string adapter = "Vexmoor/EpgSQLPluginVexmoorUtil";
    EXPECT_THAT(firstLoad(), ElementsAre("after " + service + " make 1", "after " + service + " make 2",
                                         "after " + adapter + " loaded", "destroy 2", "destroy 1"));
    auto names = epgset::LogControl::loggerNames();
    const auto found = std::find(names.begin(), names.end(), frame);
    names.erase(names.begin(), found);
    ASSERT_GE(names.size(), 3U);
    names.resize(3);
    EXPECT_THAT(names, ElementsAre(frame, service, adapter));
    EXPECT_EQ(std::count(hostLoggers.begin(), hostLoggers.end(), frame), 0) << "asked for by the host";
}

TEST_F(PluginLoad, DoesNothingUntilItIsCalled) {
    library.emplace();
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_NE(library->descriptor(), nullptr);
    EXPECT_THAT(log.messagesOf("EpgSQLPlugin"), ElementsAre("PluginMainEntry"));
    EXPECT_EQ(log.records().size(), 1U);
}

TEST_F(PluginLoad, HandsOutElevenWords) {
    const PluginDescriptor& descriptor = load();
    std::array<std::uintptr_t, 11> words{};
    static_assert(sizeof words == sizeof descriptor);
    std::memcpy(words.data(), &descriptor, sizeof words);

    EXPECT_EQ(words[0], 1U);
    for (const std::size_t reserved : {1U, 2U, 3U, 5U, 7U, 8U, 10U})
        EXPECT_EQ(words[reserved], 0U) << reserved;
    for (const std::size_t function : {4U, 6U, 9U}) {
        Dl_info info{};
        ASSERT_NE(dladdr(reinterpret_cast<const void*>(words[function]), &info), 0) << function;
        EXPECT_THAT(info.dli_fname, HasSubstr("EpgSQLPlugin")) << function;
    }
    EXPECT_EQ(reinterpret_cast<int (*)()>(words[6])(), 14400);
}

TEST_F(PluginLoad, HandsOutTheSameDescriptorAgain) {
    library.emplace();
    const PluginDescriptor* first = library->descriptor(1);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(library->descriptor(~std::uintptr_t{0}), first);
}

TEST_F(PluginLoad, AnswersRequestsThroughItsDescriptor) {
    const PluginDescriptor& descriptor = load();
    EXPECT_EQ(get(descriptor, "epg2/channels"), 1);
    EXPECT_EQ(response.status, 200);
    EXPECT_THAT(response.body(), HasSubstr("\"name\":\"Seven\""));
}

TEST_F(PluginLoad, LetsItsExceptionReachTheHost) {
    const PluginDescriptor& descriptor = load();
    const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
    try {
        get(descriptor, "epg2/channels");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Container::DomainException& exception) {
        EXPECT_STREQ(exception.what(), "Failed to create DB entry");
    }
    EXPECT_EQ(response.status, 500);
    EXPECT_EQ(response.body(), "Failed to create DB entry");
}

TEST_F(PluginLoad, LetsTheMiddlewaresExceptionsReachTheHostUnanswered) {
    const PluginDescriptor& descriptor = load();
    ForwardingTelevision television;
    television.programmeList = [](CCSortedList&) -> int { throw std::out_of_range("of the middleware"); };
    EXPECT_THROW(get(descriptor, "epg2/channels"), std::out_of_range);
    EXPECT_THROW(descriptor.onTimer(), std::out_of_range);
    EXPECT_EQ(response.status, RecordingResponse::unset);
    EXPECT_THAT(response.calls, IsEmpty());

    television.programmeList = nullptr;
    EXPECT_EQ(get(descriptor, "epg2/channels"), 1);
    EXPECT_EQ(response.status, 200);
}

TEST_F(PluginLoad, LocksTheInstanceAndThenTheRebuildButNeverBoth) {
    const PluginDescriptor& descriptor = load();
    locks.clear();
    descriptor.onTimer();
    EXPECT_THAT(locks, ElementsAre("lock 1", "unlock 1", "lock 2", "unlock 2"));
}

TEST_F(PluginLoad, ReleasesItsLocksWhenAFillFails) {
    const PluginDescriptor& descriptor = load();
    locks.clear();
    {
        const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
        EXPECT_THROW(descriptor.onTimer(), Container::DomainException);
    }
    EXPECT_THAT(locks, ElementsAre("lock 1", "unlock 1"));
    descriptor.onTimer();
    locks.clear();
    clock.advance(601);
    {
        const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
        EXPECT_THROW(descriptor.onTimer(), Container::DomainException);
    }
    EXPECT_THAT(locks, ElementsAre("lock 1", "unlock 1", "lock 2", "unlock 2"));
}

TEST_F(PluginLoad, StartsAfreshAfterItWasUnloaded) {
    EXPECT_EQ(get(load(), "epg2/channels"), 1);
    library->unload();
    EXPECT_EQ(dlopen(EPG_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";

    useGuide("Renamed");
    log.clear();
    response = RecordingResponse();
    EXPECT_EQ(get(load(), "epg2/channels"), 1);
    EXPECT_THAT(response.body(), HasSubstr("\"name\":\"Renamed\""));
    EXPECT_THAT(log.messagesOf("Vexmoor/EpgSQLPluginVexmoor"), testing::Contains("DB created [IN MEMORY]\n"));
}

}  // namespace
}  // namespace epgtest
