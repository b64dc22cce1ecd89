#include "set/guide/GuideDownload.h"

#include <curl/curl.h>
#include <strings.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <string_view>
#include <system_error>

#include "set/files/FileWriting.h"
#include "set/guide/GuideError.h"

namespace epgset {
namespace {

constexpr long connectSeconds = 30;
constexpr long silentSeconds = 60;  // without a byte, which ends a download
constexpr long redirects = 10;
constexpr curl_off_t largestGuide = curl_off_t{2} << 30U;

struct CloseHandle {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, FreeList>;

/// What comes in.
struct Reception {
    int file;
    int writeError = 0;
    curl_off_t bytes = 0;
    GuideVersion version;
};

std::size_t takeBody(char* bytes, std::size_t, std::size_t count, void* user) {
    auto& reception = *static_cast<Reception*>(user);
    reception.bytes += static_cast<curl_off_t>(count);
    if (reception.bytes > largestGuide) {
        reception.writeError = EFBIG;
        return 0;
    }
    std::size_t written = 0;
    if (const std::error_code error = writeAll(reception.file, {bytes, count}, written)) {
        reception.writeError = error.value();
        return 0;
    }
    return count;
}

/// The value of a header line where it has that name; empty for another.
std::string valueOf(std::string_view line, std::string_view name) {
    const bool named = line.size() > name.size() && line[name.size()] == ':' &&
                       strncasecmp(line.data(), name.data(), name.size()) == 0;
    if (!named) return {};
    line.remove_prefix(name.size() + 1);
    const auto first = line.find_first_not_of(" \t");
    const auto last = line.find_last_not_of(" \t\r\n");
    return first == std::string_view::npos ? std::string()
                                           : std::string(line.substr(first, last + 1 - first));
}

std::size_t takeHeader(char* bytes, std::size_t, std::size_t count, void* user) {
    auto& version = static_cast<Reception*>(user)->version;
    const std::string_view line(bytes, count);
    if (line.starts_with("HTTP/")) version = {};  // of a redirection, say
    if (std::string value = valueOf(line, "ETag"); !value.empty()) version.etag = std::move(value);
    if (std::string value = valueOf(line, "Last-Modified"); !value.empty()) {
        version.lastModified = std::move(value);
    }
    return count;
}

HeaderList conditionOf(const GuideVersion& version) {
    HeaderList list;
    const auto add = [&list](const std::string& line) {
        if (curl_slist* const longer = curl_slist_append(list.get(), line.c_str())) {
            static_cast<void>(list.release());
            list.reset(longer);
        }
    };
    if (!version.etag.empty()) add("If-None-Match: " + version.etag);
    if (!version.lastModified.empty()) add("If-Modified-Since: " + version.lastModified);
    return list;
}

void setOptions(CURL* handle, const std::string& url, const HeaderList& headers, Reception& reception,
                char* message) {
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, redirects);
    curl_easy_setopt(handle, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, connectSeconds);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, silentSeconds);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");  // all that the library can undo
    curl_easy_setopt(handle, CURLOPT_USERAGENT, "epghost");
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, message);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &takeBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &reception);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &takeHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &reception);
}

}  // namespace

bool downloadGuide(const std::string& url, int file, GuideVersion& version) {
    const std::unique_ptr<CURL, CloseHandle> handle(curl_easy_init());
    if (!handle) throw GuideError(url, 0, "cannot be fetched: out of memory");
    const HeaderList headers = conditionOf(version);
    Reception reception{file, 0, 0, {}};
    char message[CURL_ERROR_SIZE] = "";
    setOptions(handle.get(), url, headers, reception, message);
    const CURLcode result = curl_easy_perform(handle.get());
    if (reception.writeError != 0) {
        throw GuideError(url, 0, "cannot be kept: " + std::generic_category().message(reception.writeError));
    }
    if (result != CURLE_OK) {
        const std::string_view reason = message[0] != '\0' ? message : curl_easy_strerror(result);
        throw GuideError(url, 0, "cannot be fetched: " + std::string(reason));
    }
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status == 304 && headers) return false;
    if (status != 200)
        throw GuideError(url, 0, "cannot be fetched: the server answers " + std::to_string(status));
    version = std::move(reception.version);
    return true;
}

bool isGuideUrl(const std::string& guide) {
    // The scheme of a URL has no letter case.
    return strncasecmp(guide.c_str(), "http://", 7) == 0 || strncasecmp(guide.c_str(), "https://", 8) == 0;
}

}  // namespace epgset
