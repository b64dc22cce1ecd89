#include "set/recorder/SourceReader.h"

#include <curl/curl.h>
#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <system_error>

namespace epgset {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// How often the taker is asked when nothing else happens.
constexpr std::chrono::milliseconds askPeriod{200};

constexpr long maximumRedirects = 5;
constexpr long receiveBufferBytes = 256L * 1024;

void initialiseLibrary() {
    struct Library {
        Library() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    };
    static const Library library;
}

struct CloseUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, CloseUrl>;

struct FreeText {
    void operator()(char* text) const { curl_free(text); }
};

/// Whether a text begins with the name of a protocol; else it is a path.
bool isUrl(const std::string& source) {
    const std::size_t colon = source.find(':');
    if (colon == std::string::npos || source.find('/') < colon) return false;
    return source.compare(colon, 3, "://") == 0 || strncasecmp(source.c_str(), "file:", 5) == 0;
}

/// Null when the text is no URL.
Url parsed(const std::string& text) {
    Url url(curl_url());
    if (!url) throw std::bad_alloc();
    if (curl_url_set(url.get(), CURLUPART_URL, text.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
        return nullptr;
    return url;
}

/// Empty for a part that is not there.
std::string partOf(const Url& url, CURLUPart part, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(url.get(), part, &text, flags) != CURLUE_OK) return {};
    const std::unique_ptr<char, FreeText> owner(text);
    return text;
}

/// A path as a URL, every byte that means something in one escaped.
std::string fileUrl(const std::string& path) {
    std::string url = "file://";
    for (const char byte : std::filesystem::absolute(path).string()) {
        const auto code = static_cast<unsigned char>(byte);
        const bool plain = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                           (code >= 'a' && code <= 'z') ||
                           std::string_view("/-_.~").find(byte) != std::string_view::npos;
        url += plain ? std::string(1, byte) : fmt::format("%{:02X}", code);
    }
    return url;
}

/// The path of a file's URL; empty for another's.
std::string pathOf(const std::string& text) {
    const Url url = parsed(text);
    if (!url || partOf(url, CURLUPART_SCHEME) != "file") return {};
    return partOf(url, CURLUPART_PATH, CURLU_URLDECODE);
}

/// Why that file cannot be read now; empty where it can. A pipe or a device could keep its reader waiting
/// without an end.
std::string fileTrouble(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return path + " is missing";
    if (error) return path + " cannot be read: " + error.message();
    return status.type() == std::filesystem::file_type::regular ? "" : path + " is no regular file";
}

}  // namespace

std::optional<std::string> sourceFault(const std::string& source) {
    if (!isUrl(source)) return std::nullopt;
    const Url url = parsed(source);
    if (!url) return "its source is no URL that can be read";
    const std::string scheme = partOf(url, CURLUPART_SCHEME);
    if (scheme == "http" || scheme == "https" || scheme == "file") return std::nullopt;
    return "its source is of the kind \"" + scheme + "\", not HTTP, HTTPS or a file";
}

/// One time of reading.
class SourceReader::Transfer {
public:
    Transfer(const SourceReader& reader, SourceTaker& taker)
        : reader_(reader), taker_(taker), multi_(reader.multi_.get()), easy_(curl_easy_init()) {
        if (!easy_) throw std::bad_alloc();
        initialise();
        curl_multi_add_handle(multi_, easy_.get());
    }
    ~Transfer() { curl_multi_remove_handle(multi_, easy_.get()); }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    Outcome run() {
        for (;;) {
            int running = 0;
            const CURLMcode code = curl_multi_perform(multi_, &running);
            if (code != CURLM_OK) return {End::Broken, curl_multi_strerror(code)};
            if (unwanted_ || !taker_.wantsMore()) return {End::Unwanted, {}};
            if (running == 0) return outcome();
            if (SteadyClock::now() - lastByte_ >= reader_.limits_.silence) {
                return {End::Broken, fmt::format("no byte came for {} s", seconds(reader_.limits_.silence))};
            }
            curl_multi_poll(multi_, nullptr, 0, static_cast<int>(askPeriod.count()), nullptr);
        }
    }

private:
    struct CloseEasy {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };

    template <typename Value>
    void set(CURLoption option, Value value) {
        curl_easy_setopt(easy_.get(), option, value);
    }

    static double seconds(std::chrono::milliseconds time) {
        return std::chrono::duration<double>(time).count();
    }

    void initialise() {
        set(CURLOPT_URL, reader_.url_.c_str());
        set(CURLOPT_PROTOCOLS_STR, "http,https,file");
        set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, maximumRedirects);
        set(CURLOPT_FAILONERROR, 1L);
        set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(reader_.limits_.connect.count()));
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_QUICK_EXIT, 1L);  // a name server that is silent holds nobody up
        set(CURLOPT_BUFFERSIZE, receiveBufferBytes);
        set(CURLOPT_USERAGENT, "epghost");
        set(CURLOPT_ERRORBUFFER, message_.data());
        set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
        set(CURLOPT_WRITEDATA, this);
    }

    static std::size_t receive(const char* bytes, std::size_t one, std::size_t count, void* self) noexcept {
        return static_cast<Transfer*>(self)->pass({bytes, one * count}) ? one * count : CURL_WRITEFUNC_ERROR;
    }

    /// False to give up.
    bool pass(std::string_view bytes) {
        if (bytes.empty()) return true;
        // An answer such as a 300 without an address has a text for people, not a stream.
        const long status = this->status();
        if (status != 0 && (status < 200 || status > 299)) return false;
        any_ = true;
        lastByte_ = SteadyClock::now();
        // A file is read without a pause, so the question is put here too.
        unwanted_ = !taker_.take(bytes) || !taker_.wantsMore();
        return !unwanted_;
    }

    /// Of HTTP; 0 for a file and while there is none.
    long status() const {
        long status = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return status;
    }

    Outcome outcome() const {
        int left = 0;
        const CURLMsg* const done = curl_multi_info_read(multi_, &left);
        const CURLcode code = done == nullptr ? CURLE_RECV_ERROR : done->data.result;
        const long status = this->status();
        const bool refused =
            code == CURLE_OK || code == CURLE_WRITE_ERROR || code == CURLE_HTTP_RETURNED_ERROR;
        if (refused && status >= 300)
            return {End::Broken, fmt::format("it answered with HTTP status {}", status)};
        if (code == CURLE_OK) return orderlyEnd();
        return {End::Broken, message_[0] != '\0' ? message_.data() : curl_easy_strerror(code)};
    }

    /// What has a length that is known is a file. A stream without one that comes to an end is only cut off.
    Outcome orderlyEnd() const {
        curl_off_t length = -1;
        curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        const bool file = status() == 0;
        if (any_ && (file || length > 0)) return {End::Over, {}};
        return {End::Broken, any_ ? "it closed the connection" : "it sent nothing"};
    }

    const SourceReader& reader_;
    SourceTaker& taker_;
    CURLM* const multi_;
    std::array<char, CURL_ERROR_SIZE> message_{};
    const std::unique_ptr<CURL, CloseEasy> easy_;
    SteadyClock::time_point lastByte_ = SteadyClock::now();
    bool any_ = false;
    bool unwanted_ = false;
};

void SourceReader::CloseMulti::operator()(void* multi) const {
    curl_multi_cleanup(multi);
}

SourceReader::SourceReader(const std::string& source, const Limits& limits)
    : url_(isUrl(source) ? source : fileUrl(source)),
      limits_(limits),
      multi_((initialiseLibrary(), curl_multi_init())) {
    if (!multi_) throw std::bad_alloc();
}

SourceReader::~SourceReader() = default;

SourceReader::Outcome SourceReader::read(SourceTaker& taker) {
    if (const std::string path = pathOf(url_); !path.empty()) {
        if (std::string trouble = fileTrouble(path); !trouble.empty())
            return {End::Broken, std::move(trouble)};
    }
    return Transfer(*this, taker).run();
}

void SourceReader::pause(std::chrono::milliseconds time, SourceTaker& taker) {
    const auto until = SteadyClock::now() + time;
    while (taker.wantsMore()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - SteadyClock::now());
        if (left <= std::chrono::milliseconds(0)) return;
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(std::min(left, askPeriod).count()),
                        nullptr);
    }
}

void SourceReader::wake() {
    curl_multi_wakeup(multi_.get());
}

}  // namespace epgset
