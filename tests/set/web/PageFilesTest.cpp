#include "set/web/PageFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "set/log/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

class PageFilesTest : public ::testing::Test {
protected:
    /// Writes a file of the page, its folder too.
    void write(const std::string& name, const std::string& text) const {
        fs::create_directories((folder_.path() / name).parent_path());
        std::ofstream(folder_.path() / name) << text;
    }

    PageFiles read() const { return PageFiles(folder_.path()); }

    static std::optional<WebResponse> answer(const PageFiles& files, const std::vector<std::string>& segments,
                                             const WebHeaders& headers = {}) {
        WebRequest request;
        request.method = "GET";
        request.headers = headers;
        return files.answer(request, segments);
    }

    LogCapture log_{Container::Logger::Warning};
    test::TemporaryFolder folder_;
};

TEST_F(PageFilesTest, AnswerTheIndexForTheRoot) {
    write("index.html", "<p>guide");
    const PageFiles files = read();
    for (const std::vector<std::string>& segments :
         {std::vector<std::string>{}, std::vector<std::string>{"index.html"}}) {
        const auto response = answer(files, segments);
        ASSERT_TRUE(response);
        EXPECT_EQ(200, response->status);
        EXPECT_EQ("<p>guide", bodyOf(*response));
    }
}

TEST_F(PageFilesTest, AnswerTheIndexOfAFolder) {
    write("index.html", "guide");
    write("set/api/index.html", "interface");
    write("assets/style.css", "2");
    const PageFiles files = read();
    const auto response = answer(files, {"set", "api"});
    ASSERT_TRUE(response);
    EXPECT_EQ("interface", bodyOf(*response));
    EXPECT_FALSE(answer(files, {"set"}));
    EXPECT_FALSE(answer(files, {"assets"}));
}

TEST_F(PageFilesTest, LetTheViewerOfTheInterfaceAloneWriteItsStyles) {
    write("index.html", "guide");
    write("set/api/index.html", "interface");
    write("set/other/index.html", "other");
    const PageFiles files = read();
    const auto policyOf = [&](const std::vector<std::string>& segments) {
        return headerValue(answer(files, segments)->headers, "Content-Security-Policy");
    };
    EXPECT_THAT(policyOf({"set", "api"}), HasSubstr("style-src-elem 'self' 'unsafe-inline'"));
    EXPECT_EQ(policyOf({}), policyOf({"set", "other"}));
    EXPECT_THAT(policyOf({}), Not(HasSubstr("unsafe")));
}

TEST_F(PageFilesTest, TellWhatKindEachFileIs) {
    write("index.html", "");
    write("assets/guide.js", "1");
    write("assets/style.css", "2");
    write("icon.svg", "3");
    write("openapi.yaml", "5");
    write("assets/letters.woff2", "4");
    const PageFiles files = read();
    const auto typeOf = [&](const std::vector<std::string>& segments) {
        return headerValue(answer(files, segments).value().headers, "Content-Type");
    };
    EXPECT_EQ("text/html;charset=utf-8", typeOf({}));
    EXPECT_EQ("text/javascript;charset=utf-8", typeOf({"assets", "guide.js"}));
    EXPECT_EQ("text/css;charset=utf-8", typeOf({"assets", "style.css"}));
    EXPECT_EQ("image/svg+xml", typeOf({"icon.svg"}));
    EXPECT_EQ("font/woff2", typeOf({"assets", "letters.woff2"}));
    EXPECT_EQ("application/yaml", typeOf({"openapi.yaml"}));
}

TEST_F(PageFilesTest, LetTheBrowserAskNobodyElse) {
    write("index.html", "");
    const WebHeaders headers = answer(read(), {}).value().headers;
    const std::string policy = headerValue(headers, "Content-Security-Policy");
    EXPECT_THAT(policy, HasSubstr("default-src 'none'"));
    EXPECT_THAT(policy, HasSubstr("script-src 'self';"));
    EXPECT_THAT(policy, HasSubstr("connect-src 'self';"));
    EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
    EXPECT_EQ("nosniff", headerValue(headers, "X-Content-Type-Options"));
    EXPECT_EQ("no-cache", headerValue(headers, "Cache-Control"));
}

TEST_F(PageFilesTest, AreNotSentAgainToWhomHasThem) {
    write("index.html", "guide");
    const PageFiles files = read();
    const std::string tag = headerValue(answer(files, {}).value().headers, "ETag");
    ASSERT_FALSE(tag.empty());
    EXPECT_EQ(304, answer(files, {}, {{"If-None-Match", tag}})->status);
    EXPECT_EQ(200, answer(files, {}, {{"If-None-Match", "\"other\""}})->status);
}

TEST_F(PageFilesTest, AreThoseThatWereThereAtTheStart) {
    write("index.html", "before");
    const PageFiles files = read();
    write("index.html", "after");
    write("late.js", "");
    EXPECT_EQ("before", bodyOf(*answer(files, {})));
    EXPECT_FALSE(answer(files, {"late.js"}));
}

TEST_F(PageFilesTest, LeadNowhereElse) {
    write("page/index.html", "");
    write("secret.txt", "secret");
    const PageFiles files(folder_.path() / "page");
    for (const std::vector<std::string>& segments :
         {std::vector<std::string>{"..", "secret.txt"}, {"../secret.txt"}, {"."}, {"secret.txt"}}) {
        EXPECT_FALSE(answer(files, segments)) << ::testing::PrintToString(segments);
    }
}

TEST_F(PageFilesTest, LeaveOutOtherKindsAndFolders) {
    write("index.html", "");
    write("notes.bak", "");
    write("assets/guide.js", "");
    const PageFiles files = read();
    EXPECT_FALSE(answer(files, {"notes.bak"}));
    EXPECT_FALSE(answer(files, {"assets"}));
}

TEST_F(PageFilesTest, LeaveOutAFileThatIsTooLargeAndSaySo) {
    write("index.html", "");
    write("fits.js", std::string(4U << 20, ' '));
    write("large.js", std::string((4U << 20) + 1, ' '));
    const PageFiles files = read();
    EXPECT_TRUE(answer(files, {"fits.js"}));
    EXPECT_FALSE(answer(files, {"large.js"}));
    EXPECT_THAT(log_.messagesOf("set/web"), ElementsAre(HasSubstr("large.js is not served")));
}

TEST_F(PageFilesTest, AreNoneWithoutTheFolderOrItsIndex) {
    EXPECT_TRUE(PageFiles().empty());
    EXPECT_TRUE(PageFiles(folder_.path() / "none").empty());
    write("guide.js", "");
    const PageFiles files = read();
    EXPECT_TRUE(files.empty());
    EXPECT_FALSE(answer(files, {"guide.js"}));
}

TEST(ShippedPage, IsBesideTheProgramsFolder) {
    WebRequest request;
    request.method = "GET";
    const auto response = PageFiles(shippedPage()).answer(request, {});
    ASSERT_TRUE(response);
    EXPECT_THAT(bodyOf(*response), HasSubstr("assets/guide.js"));
}

}  // namespace
}  // namespace epgset
