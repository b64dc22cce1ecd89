// Who may call the set.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "set/web/WebMessage.h"

namespace epgset {

/// What the owner of the set allows beyond the set's own page and programs that are no browsers.
struct AccessSettings {
    std::vector<std::string> hostNames;       ///< names that the set is called by
    std::vector<std::string> allowedOrigins;  ///< of other sites' pages, such as "http://tablet.example:3000"
    std::string token;                        ///< empty: none is asked for
    bool encrypted = false;                   ///< served by HTTPS: the cookie goes nowhere else
};

/// Whether the value of a Host header is an address, "localhost" or one of the names, with a port or without.
/// Letter case does not count. An address cannot be made to point elsewhere by whoever runs a name.
bool isOwnHost(std::string_view host, const std::vector<std::string>& names);

/// Whether two texts are the same, in a time that tells nothing of where they differ.
bool sameSecret(std::string_view one, std::string_view other);

/// The value of a cookie of a Cookie header; nothing when it holds none of that name.
std::optional<std::string_view> cookieOf(std::string_view cookies, std::string_view name);

/// Refuses requests: those that a name points here that is none of the set's, those that another site's page
/// has a browser send, and those without the token where one is asked for. Used by any thread.
class AccessRules {
public:
    /// The name of the cookie that a login gives.
    static constexpr std::string_view cookieName = "epghost";

    explicit AccessRules(AccessSettings settings) : settings_(std::move(settings)) {}

    /// The answer to a request that is refused, or that only asks what it may send; nothing for one that is
    /// let through.
    std::optional<WebResponse> answer(const WebRequest& request) const;

    /// Adds what a browser needs to hand the answer to an allowed page of another site.
    void allowReading(const WebRequest& request, WebResponse& response) const;

    /// The answer to a request for "/set/login": a form, or to a form that was sent in, the cookie.
    WebResponse login(const WebRequest& request) const;

private:
    bool isAllowedOrigin(const std::string& origin) const;
    bool comesFromElsewhere(const WebRequest& request) const;
    bool hasToken(const WebRequest& request) const;

    const AccessSettings settings_;
};

/// Reads the token of a file: its first line, without white space around it. Throws std::runtime_error, whose
/// what() names the file, when it cannot be read, is shorter than 16 characters or holds others than letters,
/// digits and -._~+/=.
std::string readToken(const std::string& file);

}  // namespace epgset
