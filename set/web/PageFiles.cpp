#include "set/web/PageFiles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

#include "host/Logger.h"
#include "set/web/EntityTag.h"

namespace epgset {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t maximumFileBytes = std::uintmax_t{4} << 20;

constexpr const char* indexFile = "index.html";

/// Nothing but the page's own files and the set's own resources: the browser asks nobody else, and runs no
/// script that stands in the page itself.
constexpr std::string_view contentSecurityPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; font-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

/// The packaged viewer of the interface's description writes its styles into its page.
constexpr std::string_view viewerFolder = "set/api";
constexpr std::string_view viewerPolicy =
    "; style-src-elem 'self' 'unsafe-inline'; style-src-attr 'unsafe-inline'";

std::string policyOf(const fs::path& file) {
    const bool isViewers = file.parent_path() == viewerFolder;
    return std::string(contentSecurityPolicy) + std::string(isViewers ? viewerPolicy : "");
}

struct Kind {
    std::string_view extension;
    const char* contentType;
};

constexpr std::array kinds = {
    Kind{".html", "text/html;charset=utf-8"},
    Kind{".js", "text/javascript;charset=utf-8"},
    Kind{".css", "text/css;charset=utf-8"},
    Kind{".svg", "image/svg+xml"},
    Kind{".png", "image/png"},
    Kind{".ico", "image/x-icon"},
    Kind{".woff2", "font/woff2"},
    Kind{".txt", "text/plain;charset=utf-8"},
    Kind{".json", "application/json;charset=utf-8"},
    Kind{".yaml", "application/yaml"},
};

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/web");
    return logger;
}

const char* contentTypeOf(const fs::path& file) {
    const std::string extension = file.extension().string();
    const auto* found = std::ranges::find(kinds, std::string_view(extension), &Kind::extension);
    return found == kinds.end() ? nullptr : found->contentType;
}

/// The file's bytes; nothing when they cannot be read, which is logged, or are too many.
std::optional<std::string> bytesOf(const fs::path& file) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (!error && size > maximumFileBytes) {
        log().warning("%s is not served: it is larger than 4 MiB", file.string());
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (error || !stream || bytes.size() != size) {
        log().warning("%s is not served: it cannot be read", file.string());
        return std::nullopt;
    }
    return bytes;
}

}  // namespace

PageFiles::PageFiles(const fs::path& folder) {
    try {
        read(folder);
    } catch (const fs::filesystem_error& error) {
        log().warning("No guide page: %s", error.what());
        files_.clear();
    }
    if (!files_.contains({indexFile})) files_.clear();
}

void PageFiles::read(const fs::path& folder) {
    if (!fs::is_directory(folder)) return;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const char* contentType = contentTypeOf(entry.path());
        if (!contentType) continue;
        auto bytes = bytesOf(entry.path());
        if (!bytes) continue;
        const fs::path file = entry.path().lexically_relative(folder);
        std::vector<std::string> segments;
        for (const fs::path& segment : file)
            segments.push_back(segment.string());
        std::string tag = entityTag(contentType, *bytes);
        files_.insert_or_assign(std::move(segments),
                                File{contentType, std::make_shared<const std::string>(std::move(*bytes)),
                                     std::move(tag), policyOf(file)});
    }
}

std::optional<WebResponse> PageFiles::answer(const WebRequest& request,
                                             const std::vector<std::string>& segments) const {
    auto found = files_.find(segments);
    if (found == files_.end()) {
        std::vector<std::string> index = segments;
        index.emplace_back(indexFile);
        found = files_.find(index);
    }
    if (found == files_.end()) return std::nullopt;
    const File& file = found->second;
    WebResponse response;
    setHeader(response.headers, "Content-Type", file.contentType);
    setHeader(response.headers, "ETag", file.tag);
    // The files keep their names when a new set is installed: a browser has to ask whether they are the same.
    setHeader(response.headers, "Cache-Control", "no-cache");
    setHeader(response.headers, "Content-Security-Policy", file.policy);
    setHeader(response.headers, "X-Content-Type-Options", "nosniff");
    setHeader(response.headers, "Referrer-Policy", "no-referrer");
    response.sharedBody = file.body;
    answerConditionally(request, response);
    return response;
}

fs::path shippedPage() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "share/epghost/web";
}

}  // namespace epgset
