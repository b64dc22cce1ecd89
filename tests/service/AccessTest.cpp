// Who may call epghost.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/service/ServiceFixture.h"
#include "tests/support/Certificate.h"

namespace epgset::test {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

TEST(Access, IsRefusedToAForeignNameAndToOtherSitesPages) {
    RunningSet set(
        {"--guide", smallGuide, "--host-name", "tv.home", "--allow-origin", "http://tablet.example"});
    HttpClient client(set.url());
    EXPECT_EQ(403, client.get("/ws/epg2/channels", {"Host: evil.example"}).status);
    EXPECT_EQ(200, client.get("/ws/epg2/channels", {"Host: tv.home"}).status);
    EXPECT_EQ(403, client.get("/set/status", {"Origin: http://evil.example"}).status);
    EXPECT_EQ(403, client.get("/set/status", {"Sec-Fetch-Site: cross-site"}).status);
    const HttpAnswer allowed = client.get("/ws/epg2/channels", {"Origin: http://tablet.example"});
    EXPECT_EQ(200, allowed.status);
    EXPECT_EQ("http://tablet.example", allowed.header("access-control-allow-origin"));
    EXPECT_EQ(404, client.get("/set/login").status);
}

TEST(Access, TakesTheTokenWhereOneIsAskedFor) {
    const TemporaryFolder folder;
    const std::string token = "0123456789abcdef";
    RunningSet set({"--guide", smallGuide, "--token", folder.write("token", token + "\n").string()});
    HttpClient client(set.url());
    EXPECT_EQ(401, client.get("/ws/epg2/channels").status);
    EXPECT_EQ(401, client.get("/set/status").status);
    EXPECT_EQ(200, client.get("/ws/epg2/channels", {"Authorization: Bearer " + token}).status);
    EXPECT_EQ(200, client.get("/set/login").status);
    const HttpAnswer login = client.send("POST", "/set/login", "token=" + token);
    EXPECT_EQ(303, login.status);
    const std::string cookie = login.header("set-cookie");
    EXPECT_EQ(200, client.get("/set/status", {"Cookie: " + cookie.substr(0, cookie.find(';'))}).status);
    EXPECT_EQ(401, client.send("POST", "/set/login", "token=wrong").status);
}

TEST(Access, GivesACookieForHttpsAloneWhereThatIsServed) {
    const TemporaryFolder folder;
    const std::string token = "0123456789abcdef";
    const CertificateFiles files = makeCertificate(folder);
    RunningSet set({"--guide", smallGuide, "--token", folder.write("token", token + "\n").string(),
                    "--tls-cert", files.certificate, "--tls-key", files.key});
    EXPECT_THAT(set.url(), StartsWith("https://127.0.0.1:"));
    HttpClient client(set.url());
    client.trust(files.certificate);
    const std::string cookie = client.send("POST", "/set/login", "token=" + token).header("set-cookie");
    EXPECT_THAT(cookie, EndsWith("; Secure"));
    EXPECT_EQ(200, client.get("/set/status", {"Cookie: " + cookie.substr(0, cookie.find(';'))}).status);
}

}  // namespace
}  // namespace epgset::test
