#include "set/web/AccessRules.h"

#include <arpa/inet.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>

#include "set/uri/UriText.h"
#include "set/web/RequestPath.h"

namespace epgset {
namespace {

constexpr std::string_view loginPath = "/set/login";

/// What a page of another site may send and read.
constexpr std::string_view allowedMethods = "GET, HEAD, POST, PUT, DELETE";
constexpr std::string_view allowedHeaders = "Authorization, Content-Type, If-None-Match, Last-Event-ID";
constexpr std::string_view exposedHeaders = "ETag, EPG-SQL-Error";

constexpr std::size_t shortestToken = 16;

/// What a header and a cookie can carry as it is.
constexpr const char* tokenLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~+/=";

bool sameWord(std::string_view one, std::string_view other) {
    return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

/// "HOST:PORT" and "[HOST]:PORT" without port and brackets; empty for what is neither, as two Host headers
/// are.
std::string_view withoutPort(std::string_view host) {
    const bool bracketed = host.starts_with('[');
    if (bracketed) host.remove_prefix(1);
    const auto end = host.find(bracketed ? ']' : ':');
    const std::string_view name = host.substr(0, end);
    if (end == std::string_view::npos) return bracketed ? std::string_view() : name;
    std::string_view port = host.substr(bracketed ? end + 1 : end);
    if (port.empty()) return name;
    if (!port.starts_with(':')) return {};
    port.remove_prefix(1);
    return port.find_first_not_of("0123456789") == std::string_view::npos ? name : std::string_view();
}

bool isAddress(const std::string& host) {
    std::array<unsigned char, 16> address{};
    return inet_pton(AF_INET, host.c_str(), address.data()) == 1 ||
           inet_pton(AF_INET6, host.c_str(), address.data()) == 1;
}

/// Whether a request asks for what only the set's own page and programs are to have.
bool isGuarded(const WebRequest& request) {
    return pathBelow(request.path, "ws") || pathBelow(request.path, "set");
}

/// The token that a login form sends; empty when there is none.
std::string formToken(const std::string& body) {
    constexpr std::string_view field = "token=";
    if (!body.starts_with(field)) return {};
    const std::string_view value = std::string_view(body).substr(field.size());
    const std::string_view coded = value.substr(0, value.find('&'));
    std::string token(coded.size(), '\0');
    token.resize(decodeUriText(coded, PlusSign::Blank, token.data()).value_or(0));
    return token;
}

WebResponse loginForm(int status, std::string_view note) {
    WebResponse response;
    response.status = status;
    setHeader(response.headers, "Content-Type", "text/html;charset=utf-8");
    setHeader(response.headers, "Cache-Control", "no-store");
    setHeader(response.headers, "Content-Security-Policy",
              "default-src 'none'; form-action 'self'; frame-ancestors 'none'");
    response.body =
        "<!DOCTYPE html><html lang=\"en\"><meta name=\"viewport\" content=\"width=device-width\">"
        "<title>Programme guide: token</title><h1>Programme guide</h1><p>" +
        std::string(note) +
        "</p><form method=\"post\" action=\"/set/login\"><label>Token <input name=\"token\" "
        "type=\"password\" autocomplete=\"current-password\" required autofocus></label> "
        "<button>Go on</button></form></html>\n";
    return response;
}

}  // namespace

bool isOwnHost(std::string_view host, const std::vector<std::string>& names) {
    const std::string name(withoutPort(host));
    if (isAddress(name) || sameWord(name, "localhost")) return true;
    return std::ranges::any_of(names, [&name](const std::string& own) { return sameWord(name, own); });
}

bool sameSecret(std::string_view one, std::string_view other) {
    unsigned difference = one.size() == other.size() ? 0U : 1U;
    for (std::size_t i = 0; i < one.size(); ++i) {
        const char against = other.empty() ? '\0' : other[i % other.size()];
        difference |= static_cast<unsigned>(static_cast<unsigned char>(one[i] ^ against));
    }
    return difference == 0;
}

std::optional<std::string_view> cookieOf(std::string_view cookies, std::string_view name) {
    while (!cookies.empty()) {
        const auto end = std::min(cookies.find(';'), cookies.size());
        std::string_view cookie = cookies.substr(0, end);
        cookies.remove_prefix(std::min(end + 1, cookies.size()));
        cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
        const auto equals = cookie.find('=');
        if (equals != std::string_view::npos && cookie.substr(0, equals) == name) {
            return cookie.substr(equals + 1);
        }
    }
    return std::nullopt;
}

std::optional<WebResponse> AccessRules::answer(const WebRequest& request) const {
    const std::string host = headerValue(request.headers, "Host");
    if (!host.empty() && !isOwnHost(host, settings_.hostNames)) {
        return textResponse(403, "the set is not called by this name; --host-name adds one");
    }
    if (!isGuarded(request)) return std::nullopt;
    if (comesFromElsewhere(request)) {
        return textResponse(403, "a page of another site may not ask this; --allow-origin lets one");
    }
    const std::string asked = headerValue(request.headers, "Access-Control-Request-Method");
    if (request.method == "OPTIONS" && !asked.empty()) {
        WebResponse response;
        response.status = 204;
        setHeader(response.headers, "Access-Control-Allow-Methods", allowedMethods);
        setHeader(response.headers, "Access-Control-Allow-Headers", allowedHeaders);
        setHeader(response.headers, "Access-Control-Max-Age", "600");
        return response;
    }
    if (pathSegments(request.path) == pathSegments(loginPath)) return login(request);
    if (hasToken(request)) return std::nullopt;
    WebResponse response = textResponse(401, "the set asks for its token; a browser gives it at /set/login");
    setHeader(response.headers, "WWW-Authenticate", "Bearer");
    return response;
}

void AccessRules::allowReading(const WebRequest& request, WebResponse& response) const {
    if (settings_.allowedOrigins.empty()) return;
    setHeader(response.headers, "Vary", "Origin");
    const std::string origin = headerValue(request.headers, "Origin");
    if (origin.empty() || !isAllowedOrigin(origin)) return;
    setHeader(response.headers, "Access-Control-Allow-Origin", origin);
    setHeader(response.headers, "Access-Control-Expose-Headers", exposedHeaders);
}

WebResponse AccessRules::login(const WebRequest& request) const {
    if (settings_.token.empty()) return textResponse(404, "the set asks for no token");
    if (request.method == "GET" || request.method == "HEAD")
        return loginForm(200, "The set asks for its token.");
    if (request.method != "POST") {
        WebResponse response = textResponse(405, "a token is sent with POST");
        setHeader(response.headers, "Allow", "GET, HEAD, POST");
        return response;
    }
    const std::string token = formToken(request.body);
    if (!sameSecret(token, settings_.token)) return loginForm(401, "This is not the set's token.");
    WebResponse response;
    response.status = 303;
    setHeader(response.headers, "Location", "/");
    setHeader(response.headers, "Cache-Control", "no-store");
    std::string cookie =
        std::string(cookieName) + "=" + token + "; Path=/; HttpOnly; SameSite=Strict; Max-Age=31536000";
    if (settings_.encrypted) cookie += "; Secure";
    setHeader(response.headers, "Set-Cookie", cookie);
    return response;
}

bool AccessRules::isAllowedOrigin(const std::string& origin) const {
    return std::ranges::any_of(settings_.allowedOrigins,
                               [&origin](const std::string& allowed) { return sameWord(origin, allowed); });
}

// A browser states where a page comes from in one of two headers, or in both; what is no browser in none.
bool AccessRules::comesFromElsewhere(const WebRequest& request) const {
    const std::string origin = headerValue(request.headers, "Origin");
    if (!origin.empty() && isAllowedOrigin(origin)) return false;
    if (sameWord(headerValue(request.headers, "Sec-Fetch-Site"), "cross-site")) return true;
    if (origin.empty()) return false;
    const auto scheme = origin.find("://");
    const std::string_view host =
        scheme == std::string::npos ? std::string_view() : std::string_view(origin).substr(scheme + 3);
    // "null" names no host, and neither does a request without one.
    return host.empty() || !sameWord(host, headerValue(request.headers, "Host"));
}

bool AccessRules::hasToken(const WebRequest& request) const {
    if (settings_.token.empty()) return true;
    const std::string authorization = headerValue(request.headers, "Authorization");
    constexpr std::string_view scheme = "Bearer ";
    if (sameWord(std::string_view(authorization).substr(0, scheme.size()), scheme)) {
        return sameSecret(std::string_view(authorization).substr(scheme.size()), settings_.token);
    }
    const std::string cookies = headerValue(request.headers, "Cookie");
    const auto cookie = cookieOf(cookies, cookieName);
    return cookie && sameSecret(*cookie, settings_.token);
}

std::string readToken(const std::string& file) {
    std::ifstream stream(file);
    std::string token;
    if (!stream || (!std::getline(stream, token) && !stream.eof())) {
        throw std::runtime_error(file + " cannot be read");
    }
    constexpr const char* blanks = " \t\r";
    const auto first = token.find_first_not_of(blanks);
    token = first == std::string::npos ? "" : token.substr(first, token.find_last_not_of(blanks) - first + 1);
    if (token.size() < shortestToken) {
        throw std::runtime_error(file + " holds no token of at least " + std::to_string(shortestToken) +
                                 " characters in its first line");
    }
    if (token.find_first_not_of(tokenLetters) != std::string::npos) {
        throw std::runtime_error(file + " holds a token with other characters than " + tokenLetters);
    }
    return token;
}

}  // namespace epgset
