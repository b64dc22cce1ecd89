// What epghost tells the service manager.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

/// The manager's end: a datagram socket under a name, "@..." for an abstract one.
class ManagerSocket {
public:
    explicit ManagerSocket(const std::string& name)
        : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.data(), name.size());
        if (name[0] == '@') address.sun_path[0] = '\0';
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
            ADD_FAILURE() << "cannot bind " << name;
        }
    }
    ~ManagerSocket() { close(socket_); }
    ManagerSocket(const ManagerSocket&) = delete;
    ManagerSocket& operator=(const ManagerSocket&) = delete;

    /// The next message within that time; "none" when there is none.
    std::string next(int milliseconds = 30000) const {
        pollfd waiting = {socket_, POLLIN, 0};
        if (poll(&waiting, 1, milliseconds) != 1) return "none";
        std::array<char, 256> text{};
        const ssize_t count = recv(socket_, text.data(), text.size(), 0);
        return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

private:
    int socket_;
};

TEST(ServiceManager, HearsWhenTheSetIsReadyReloadsAndStops) {
    const TemporaryFolder folder;
    const std::string name = (folder.path() / "notify").string();
    const ManagerSocket manager(name);
    RunningSet set({"--guide", smallGuide}, {"NOTIFY_SOCKET=" + name});
    EXPECT_EQ("READY=1", manager.next());
    set.process().signal(SIGHUP);
    EXPECT_THAT(manager.next(), MatchesRegex("RELOADING=1\nMONOTONIC_USEC=[0-9]+"));
    EXPECT_EQ("READY=1", manager.next());
    EXPECT_EQ(0, set.process().stop());
    EXPECT_EQ("STOPPING=1", manager.next());
    EXPECT_EQ("none", manager.next(0));
    EXPECT_EQ("", set.process().errors());
}

TEST(ServiceManager, MayHaveAnAbstractSocket) {
    const std::string name = "@epghost-test-" + std::to_string(getpid());
    const ManagerSocket manager(name);
    const RunningSet set({"--guide", smallGuide}, {"NOTIFY_SOCKET=" + name});
    EXPECT_EQ("READY=1", manager.next());
}

TEST(ServiceManager, HearsNothingOfAStartThatFails) {
    const TemporaryFolder folder;
    const std::string name = (folder.path() / "notify").string();
    const ManagerSocket manager(name);
    EpghostProcess process(
        {"--guide", "/nowhere/guide.xml", "--state", folder.path().string(), "--port", "0"},
        {"NOTIFY_SOCKET=" + name});
    EXPECT_EQ(2, process.wait());
    EXPECT_EQ("none", manager.next(0));
}

TEST(ServiceManager, MayBeGoneWithoutKeepingTheSetFromServing) {
    for (const std::string& name :
         {std::string("/nowhere/notify"), std::string("relative"), std::string(200, '/')}) {
        RunningSet set({"--guide", smallGuide}, {"NOTIFY_SOCKET=" + name});
        EXPECT_TRUE(set.process().waitForError(name));
        EXPECT_EQ(200, HttpClient(set.url()).get("/set/status").status);
        EXPECT_EQ(0, set.process().stop());
    }
}

}  // namespace
}  // namespace epgset::test
