#include "set/guide/DownloadedGuide.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <rapidjson/document.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "host/Logger.h"
#include "set/files/FileReplacement.h"
#include "set/guide/GuideError.h"
#include "set/text/JsonWriter.h"

namespace epgset {
namespace {

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/guide");
    return logger;
}

/// A file without a name, which is gone when it is closed.
FileDescriptor unnamedFile(const std::string& url) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file) {
        throw GuideError(
            url, 0, "cannot be kept in " + folder.string() + ": " + std::generic_category().message(errno));
    }
    return file;
}

std::string memberOf(const rapidjson::Document& document, const char* name) {
    if (!document.IsObject()) return {};
    const auto member = document.FindMember(name);
    return member != document.MemberEnd() && member->value.IsString() ? member->value.GetString() : "";
}

std::string versionText(const std::string& url, const GuideVersion& version) {
    JsonBuffer text;
    JsonWriter<> json(text);
    json.StartObject();
    const auto member = [&json](const char* name, const std::string& value) {
        json.Key(name);
        json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    member("url", url);
    member("etag", version.etag);
    member("last_modified", version.lastModified);
    json.EndObject();
    return {text.GetString(), text.GetSize()};
}

}  // namespace

DownloadedGuide::DownloadedGuide(std::string url, const std::filesystem::path& folder)
    : url_(std::move(url)) {
    const std::string name = fmt::format("{:016x}", XXH3_64bits(url_.data(), url_.size()));
    copy_ = folder / (name + ".guide");
    versionFile_ = folder / (name + ".json");
    readVersion();
}

void DownloadedGuide::readVersion() {
    if (!hasCopy()) return;
    std::ifstream file(versionFile_, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    rapidjson::Document document;
    document.Parse(text.data(), text.size());
    if (document.HasParseError()) return;  // then it is fetched whole
    version_ = {memberOf(document, "etag"), memberOf(document, "last_modified")};
}

bool DownloadedGuide::hasCopy() const {
    std::error_code error;
    return std::filesystem::is_regular_file(copy_, error);
}

void DownloadedGuide::fetch() {
    try {
        FileDescriptor file = unnamedFile(url_);
        GuideVersion version = hasCopy() ? version_ : GuideVersion();
        const bool changed = downloadGuide(url_, file.get(), version);
        // The copy of old is what the server has, so that an earlier download is of no use either.
        fresh_ = changed ? std::move(file) : FileDescriptor();
        freshVersion_ = std::move(version);
        problem_.clear();
    } catch (const GuideError& error) {
        problem_ = error.what();
        if (!hasCopy() && !isFresh()) throw;
        log().warning("%s; the copy of it that was kept goes on being used", problem_);
    }
}

std::filesystem::path DownloadedGuide::path() const {
    return isFresh() ? std::filesystem::path("/proc/self/fd") / std::to_string(fresh_.get()) : copy_;
}

void DownloadedGuide::keep() {
    if (!isFresh()) return;
    try {
        std::filesystem::create_directories(copy_.parent_path());
        // Between the two a version of nothing: a copy is never taken for another version than it is.
        std::filesystem::remove(versionFile_);
        replaceWholeFile(copy_, fresh_.get());
        replaceWholeFile(versionFile_, versionText(url_, freshVersion_));
    } catch (const std::system_error& error) {
        throw GuideError(url_, 0, "no copy can be kept in " + copy_.string() + ": " + error.code().message());
    }
    version_ = std::move(freshVersion_);
    fresh_ = FileDescriptor();
}

bool DownloadedGuide::drop(const std::string& problem) {
    if (!isFresh() || !hasCopy()) return false;
    fresh_ = FileDescriptor();
    problem_ = problem;
    log().warning("%s; the copy of it that was kept goes on being used", problem_);
    return true;
}

}  // namespace epgset
