// The description of the interface over HTTP, and the page that shows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class InterfacePage : public ServiceFixture {};

/// What a page loads and links to, as it stands in it.
std::vector<std::string> addressesIn(const std::string& html) {
    const std::regex attribute(R"re((?:src|href|spec-url)="([^"]+)")re");
    std::vector<std::string> addresses;
    for (std::sregex_iterator found(html.begin(), html.end(), attribute), end; found != end; ++found)
        addresses.push_back((*found)[1]);
    return addresses;
}

TEST_F(InterfacePage, ServesTheDescriptionAsItIsKept) {
    std::ifstream file(EPG_DESCRIPTION, std::ios::binary);
    const std::string kept{std::istreambuf_iterator<char>(file), {}};
    const HttpAnswer answer = client_.get("/set/openapi.yaml");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ("application/yaml", answer.header("content-type"));
    EXPECT_EQ(kept, answer.body);
    EXPECT_THAT(kept, HasSubstr("openapi: 3.1.0"));
}

TEST_F(InterfacePage, ShowsTheDescriptionWithTheSetsOwnFilesAlone) {
    const HttpAnswer page = client_.get("/set/api");
    EXPECT_EQ(200, page.status);
    EXPECT_EQ("text/html;charset=utf-8", page.header("content-type"));
    const std::vector<std::string> addresses = addressesIn(page.body);
    EXPECT_THAT(addresses, Contains("/set/openapi.yaml"));
    for (const std::string& address : addresses) {
        EXPECT_THAT(address, AllOf(StartsWith("/"), Not(StartsWith("//"))));
        EXPECT_EQ(200, client_.get(address).status) << address;
    }
    EXPECT_THAT(page.body, HasSubstr("load-fonts=\"false\""));
    EXPECT_EQ(page.body, client_.get("/set/api/").body);
}

TEST_F(InterfacePage, MayBeStyledByItsViewerAndAskNobodyElse) {
    const std::string policy = client_.get("/set/api").header("content-security-policy");
    EXPECT_THAT(policy, StartsWith("default-src 'none'; script-src 'self'; "));
    EXPECT_THAT(policy, HasSubstr("connect-src 'self'; "));
    EXPECT_THAT(policy, HasSubstr("style-src-elem 'self' 'unsafe-inline'"));
    EXPECT_THAT(client_.get("/").header("content-security-policy"), Not(HasSubstr("unsafe")));
    EXPECT_THAT(client_.get("/set/openapi.yaml").header("content-security-policy"), Not(HasSubstr("unsafe")));
}

TEST_F(InterfacePage, IsOnlyRead) {
    for (const char* path : {"/set/api", "/set/openapi.yaml"}) {
        EXPECT_EQ(405, client_.send("POST", path, "x").status) << path;
        const HttpAnswer head = client_.head(path);
        EXPECT_EQ(200, head.status) << path;
        EXPECT_EQ("", head.body) << path;
        EXPECT_EQ(304, client_.get(path, {"If-None-Match: " + head.header("etag")}).status) << path;
        EXPECT_EQ(400, client_.get(std::string(path) + "?%00").status) << path;
    }
    EXPECT_EQ(304, client_.get("/set/api/page.css", {"If-None-Match: *"}).status);
    EXPECT_EQ(404, client_.get("/set/api/nothing.js").status);
}

}  // namespace
}  // namespace epgset::test
