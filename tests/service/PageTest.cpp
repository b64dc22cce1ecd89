// The guide page over HTTP.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Page : public ServiceFixture {};

/// The addresses of the files that a page names, as they stand in it.
std::vector<std::string> filesNamedIn(const std::string& html) {
    const std::regex attribute(R"re((?:src|href)="\.(/[^"]+)")re");
    std::vector<std::string> files;
    for (std::sregex_iterator found(html.begin(), html.end(), attribute), end; found != end; ++found)
        files.push_back((*found)[1]);
    return files;
}

TEST_F(Page, StandsAtTheRootWithAllItsFiles) {
    const HttpAnswer page = client_.get("/");
    EXPECT_EQ(200, page.status);
    EXPECT_EQ("text/html;charset=utf-8", page.header("content-type"));
    const std::vector<std::string> files = filesNamedIn(page.body);
    ASSERT_THAT(files, Not(IsEmpty()));
    for (const std::string& file : files) {
        const HttpAnswer answer = client_.get(file);
        EXPECT_EQ(200, answer.status) << file;
        EXPECT_THAT(answer.body, Not(IsEmpty())) << file;
        EXPECT_EQ("nosniff", answer.header("x-content-type-options")) << file;
    }
}

TEST_F(Page, IsBoundToTheSetsOwnAddress) {
    const HttpAnswer page = client_.get("/");
    EXPECT_THAT(page.header("content-security-policy"), HasSubstr("default-src 'none'"));
    EXPECT_THAT(page.body, Not(HasSubstr("//")));
}

TEST_F(Page, IsNotSentAgain) {
    const std::string tag = client_.get("/").header("etag");
    ASSERT_THAT(tag, Not(IsEmpty()));
    const HttpAnswer again = client_.get("/", {"If-None-Match: " + tag});
    EXPECT_EQ(304, again.status);
    EXPECT_THAT(again.body, IsEmpty());
}

TEST_F(Page, AnswersHeadAndRefusesToBeChanged) {
    const HttpAnswer get = client_.get("/");
    const HttpAnswer head = client_.head("/");
    EXPECT_EQ(200, head.status);
    EXPECT_THAT(head.body, IsEmpty());
    EXPECT_EQ(std::to_string(get.body.size()), head.header("content-length"));
    EXPECT_EQ(405, client_.send("PUT", "/index.html", "x").status);
}

TEST_F(Page, LeadsToNoFileOutsideIt) {
    for (const char* path : {"/../web-root/rcr/RemoteControlReceiver.xml", "/%2e%2e/%2e%2e/bin/epghost",
                             "/..%2fweb-root%2frcr%2fRemoteControlReceiver.xml", "/assets", "/assets/"}) {
        EXPECT_EQ(404, client_.get(path).status) << path;
    }
}

}  // namespace
}  // namespace epgset::test
