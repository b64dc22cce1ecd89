#include "set/upnp/WebRoot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "host/UPnP.h"
#include "set/log/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

/// The path that the control point answers; nothing on failure.
std::optional<std::string> answeredRoot() {
    static char untouched = 'x';
    char* path = &untouched;
    const int status = UPnP_CD_GetWebRootPath(&path);
    EXPECT_EQ(status == 0, path != nullptr);
    if (!path) return std::nullopt;
    std::string text(path);
    std::free(path);
    return text;
}

class WebRootTest : public ::testing::Test {
protected:
    WebRootTest() {
        fs::create_directory(folder_.path() / "rcr");
        useWebRoot(folder_.path());
    }
    ~WebRootTest() override { useWebRoot({}); }

    fs::path description() const { return folder_.path() / "rcr" / "RemoteControlReceiver.xml"; }

    void describe(std::size_t bytes) const { std::ofstream(description()) << std::string(bytes, 'x'); }

    void expectFailure(const char* message) {
        log_.clear();
        EXPECT_EQ(answeredRoot(), std::nullopt);
        EXPECT_THAT(log_.messagesOf("set/upnp"), ElementsAre(HasSubstr(message)));
    }

    LogCapture log_{Container::Logger::Warning};
    test::TemporaryFolder folder_;
};

TEST_F(WebRootTest, IsTheFolderThatHoldsTheDescription) {
    describe(5);
    EXPECT_EQ(answeredRoot(), folder_.path().string());
}

TEST_F(WebRootTest, HasNoSlashAtItsEnd) {
    describe(5);
    useWebRoot(folder_.path().string() + "//");
    EXPECT_EQ(answeredRoot(), folder_.path().string());
}

TEST_F(WebRootTest, MayHoldAnEmptyDescription) {
    describe(0);
    EXPECT_NE(answeredRoot(), std::nullopt);
}

TEST_F(WebRootTest, IsNoneWhenNoneIsInUse) {
    useWebRoot({});
    expectFailure("no web root");
}

TEST_F(WebRootTest, IsNoneWithoutItsFolder) {
    useWebRoot(folder_.path() / "none");
    expectFailure("is no folder");
    useWebRoot(folder_.write("file", ""));
    expectFailure("is no folder");
}

TEST_F(WebRootTest, IsNoneWhereTheDescriptionIsNoFile) {
    expectFailure("RemoteControlReceiver.xml is no file");
    fs::create_directory(description());
    expectFailure("is no file");
    fs::remove(description());
    ASSERT_EQ(mkfifo(description().c_str(), S_IRUSR | S_IWUSR), 0);
    expectFailure("is no file");
    fs::remove(description());
    fs::create_symlink("/dev/zero", description());
    expectFailure("is no file");
}

TEST_F(WebRootTest, IsNoneWhereTheDescriptionIsTooLarge) {
    describe(1U << 20);
    EXPECT_NE(answeredRoot(), std::nullopt);
    describe((1U << 20) + 1);
    expectFailure("larger than 1 MiB");
}

TEST_F(WebRootTest, IsLookedAtEachTime) {
    expectFailure("is no file");
    describe(5);
    EXPECT_NE(answeredRoot(), std::nullopt);
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(ShippedWebRoot, DescribesTheDeviceInTheOrderInWhichItIsRead) {
    const std::string text = contentOf(fs::path(SHIPPED_WEB_ROOT) / "rcr/RemoteControlReceiver.xml");
    std::size_t cursor = 0;
    for (const char* element : {"<friendlyName>", "<manufacturer>", "<manufacturerURL>", "<modelDescription>",
                                "<modelName>", "<modelNumber>", "<modelURL>", "<serialNumber>",
                                "<UDN>uuid:", "<qel:deviceID>", "<qel:ProductCap>"}) {
        const std::size_t found = text.find(element, cursor);
        ASSERT_NE(found, std::string::npos) << element;
        cursor = found + std::string(element).size();
        EXPECT_NE(text[cursor], '<') << element << " is empty";
    }
    EXPECT_EQ(text.find_first_of("\\&"), std::string::npos) << "is shown as it stands";
}

TEST(ShippedWebRoot, IsBesideTheProgramsFolder) {
    const std::string copied = contentOf(shippedWebRoot() / "rcr/RemoteControlReceiver.xml");
    EXPECT_FALSE(copied.empty());
    EXPECT_EQ(copied, contentOf(fs::path(SHIPPED_WEB_ROOT) / "rcr/RemoteControlReceiver.xml"));
}

}  // namespace
}  // namespace epgset
