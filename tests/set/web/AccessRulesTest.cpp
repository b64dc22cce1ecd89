// Who may call the set.
#include "set/web/AccessRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/WebRequests.h"

namespace epgset {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

const std::string secret = "0123456789abcdef";

WebRequest request(const std::string& path, const WebHeaders& headers, const std::string& method = "GET") {
    return test::webRequest(method, path, "", "", headers);
}

/// The status that the rules answer with; 200 for what they let through.
int statusOf(const AccessRules& rules, const WebRequest& request) {
    const auto response = rules.answer(request);
    return response ? response->status : 200;
}

TEST(OwnHost, IsAnAddressOrLocalhost) {
    for (const char* host : {"127.0.0.1", "127.0.0.1:8080", "192.168.1.20", "[::1]", "[fe80::1]:80",
                             "localhost", "LocalHost:8080"})
        EXPECT_TRUE(isOwnHost(host, {})) << host;
    for (const char* host :
         {"", "evil.example", "127.0.0.1.evil.example", "localhost.evil.example", "1.2.3", "[::1",
          "2130706433", "0x7f.1", "evil.example:127.0.0.1", "@localhost", "[", "127.0.0.1:80, evil.example",
          "[::1], evil.example", "[::1]evil.example", "127.0.0.1:@evil.example", "localhost:80x"})
        EXPECT_FALSE(isOwnHost(host, {})) << host;
}

TEST(OwnHost, IsANameThatTheOwnerGave) {
    EXPECT_TRUE(isOwnHost("TV.home:8080", {"other", "tv.home"}));
    EXPECT_FALSE(isOwnHost("tv.home.evil.example", {"tv.home"}));
}

TEST(SameSecret, ComparesWhole) {
    EXPECT_TRUE(sameSecret("abc", "abc"));
    for (const char* other : {"", "ab", "abcd", "abd", "xbc", "abcabc"})
        EXPECT_FALSE(sameSecret("abc", other)) << other;
    EXPECT_FALSE(sameSecret("", "abc"));
}

TEST(Cookie, IsFoundAmongOthers) {
    EXPECT_EQ(cookieOf("epghost=one", "epghost"), "one");
    EXPECT_EQ(cookieOf("a=b; epghost=one; c=d", "epghost"), "one");
    EXPECT_EQ(cookieOf("xepghost=one; epghostx=two", "epghost"), std::nullopt);
    EXPECT_EQ(cookieOf("epghost; ;", "epghost"), std::nullopt);
}

TEST(AccessRules, RefuseAForeignNameEverywhere) {
    const AccessRules rules({});
    for (const char* path : {"/", "/ws/epg2/channels", "/set/status", "/nothing"}) {
        EXPECT_EQ(statusOf(rules, request(path, {{"Host", "evil.example"}})), 403) << path;
        EXPECT_EQ(statusOf(rules, request(path, {{"Host", "127.0.0.1:8080"}})), 200) << path;
        EXPECT_EQ(statusOf(rules, request(path, {})), 200) << path;
    }
}

TEST(AccessRules, RefuseThePagesOfOtherSites) {
    const AccessRules rules({});
    const std::pair<std::string, std::string> host{"Host", "127.0.0.1:8080"};
    for (const char* path : {"/ws/epg2/channels", "/set/status"}) {
        EXPECT_EQ(statusOf(rules, request(path, {host, {"Origin", "http://127.0.0.1:8080"}})), 200);
        for (const char* origin : {"http://evil.example", "http://127.0.0.1:9090", "http://127.0.0.1", "null",
                                   ""
                                   "http://evil.example/127.0.0.1:8080"})
            EXPECT_EQ(statusOf(rules, request(path, {host, {"Origin", origin}})), 403) << origin;
        EXPECT_EQ(statusOf(rules, request(path, {host, {"Sec-Fetch-Site", "cross-site"}})), 403);
        EXPECT_EQ(statusOf(rules, request(path, {host, {"Sec-Fetch-Site", "same-origin"}})), 200);
        EXPECT_EQ(statusOf(rules, request(path, {{"Origin", "null"}})), 403);
        EXPECT_EQ(
            statusOf(
                rules,
                request(path, {host, {"Origin", "http://127.0.0.1:8080"}, {"Sec-Fetch-Site", "cross-site"}})),
            403);
    }
    EXPECT_EQ(statusOf(rules, request("/", {host, {"Sec-Fetch-Site", "cross-site"}})), 200);
}

TEST(AccessRules, LetAnAllowedSiteAskAndRead) {
    const AccessRules rules({{}, {"http://tablet.example:3000"}, ""});
    const WebHeaders headers{
        {"Host", "127.0.0.1"}, {"Origin", "http://tablet.example:3000"}, {"Sec-Fetch-Site", "cross-site"}};
    EXPECT_EQ(statusOf(rules, request("/ws/epg2/channels", headers)), 200);
    WebResponse response;
    rules.allowReading(request("/ws/epg2/channels", headers), response);
    EXPECT_EQ(headerValue(response.headers, "Access-Control-Allow-Origin"), "http://tablet.example:3000");
    EXPECT_EQ(headerValue(response.headers, "Vary"), "Origin");
    EXPECT_THAT(headerValue(response.headers, "Access-Control-Expose-Headers"), HasSubstr("EPG-SQL-Error"));

    WebHeaders preflight = headers;
    preflight.emplace_back("Access-Control-Request-Method", "PUT");
    const auto told = rules.answer(request("/ws/epg2/schedules", preflight, "OPTIONS"));
    ASSERT_TRUE(told);
    EXPECT_EQ(told->status, 204);
    EXPECT_THAT(headerValue(told->headers, "Access-Control-Allow-Methods"), HasSubstr("PUT"));

    WebResponse foreign;
    rules.allowReading(request("/", {{"Origin", "http://evil.example"}}), foreign);
    EXPECT_EQ(headerValue(foreign.headers, "Access-Control-Allow-Origin"), "");
}

TEST(AccessRules, AskForTheToken) {
    const AccessRules rules({{}, {}, secret});
    for (const char* path : {"/ws/epg2/channels", "/set/status"}) {
        const auto refused = rules.answer(request(path, {}));
        ASSERT_TRUE(refused);
        EXPECT_EQ(refused->status, 401);
        EXPECT_EQ(headerValue(refused->headers, "WWW-Authenticate"), "Bearer");
        EXPECT_EQ(statusOf(rules, request(path, {{"Authorization", "Bearer " + secret}})), 200);
        EXPECT_EQ(statusOf(rules, request(path, {{"Authorization", "bearer " + secret}})), 200);
        EXPECT_EQ(statusOf(rules, request(path, {{"Cookie", "epghost=" + secret}})), 200);
        for (const std::string wrong : {"Bearer", "Bearer ", "Bearer x", "Basic 0123456789abcdef"})
            EXPECT_EQ(statusOf(rules, request(path, {{"Authorization", wrong}})), 401) << wrong;
        EXPECT_EQ(statusOf(rules, request(path, {{"Cookie", "epghost="}})), 401);
    }
    EXPECT_EQ(statusOf(rules, request("/", {})), 200);
}

TEST(AccessRules, GiveACookieForTheToken) {
    const AccessRules rules({{}, {}, secret});
    EXPECT_THAT(rules.login(request("/set/login", {})).body, HasSubstr("<form"));
    WebRequest form = request("/set/login", {}, "POST");
    form.body = "token=" + secret;
    const auto answer = rules.answer(form);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 303);
    EXPECT_EQ(headerValue(answer->headers, "Location"), "/");
    EXPECT_EQ(headerValue(answer->headers, "Set-Cookie"),
              "epghost=" + secret + "; Path=/; HttpOnly; SameSite=Strict; Max-Age=31536000");
    for (const char* body : {"", "token=", "token=wrong", "x=0123456789abcdef", "token=0123456789abcdeF"}) {
        form.body = body;
        EXPECT_EQ(rules.answer(form)->status, 401) << body;
    }
    EXPECT_EQ(AccessRules({}).login(form).status, 404);
}

TEST(AccessRules, KeepTheCookieToHttpsWhereThatIsServed) {
    WebRequest form = request("/set/login", {}, "POST");
    form.body = "token=" + secret;
    EXPECT_THAT(headerValue(AccessRules({{}, {}, secret, true}).login(form).headers, "Set-Cookie"),
                EndsWith("; Secure"));
}

TEST(Token, IsTheFirstLineOfItsFile) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(readToken(folder.write("good", " " + secret + " \r\nmore\n").string()), secret);
    for (const char* text : {"", "short\n", "\n0123456789abcdef\n", "0123456789abcde;\n"})
        EXPECT_THROW(readToken(folder.write("bad", text).string()), std::runtime_error) << text;
    EXPECT_THROW(readToken((folder.path() / "missing").string()), std::runtime_error);
}

}  // namespace
}  // namespace epgset
