// A guide that comes from a web server, and the copy of it that is kept.
#pragma once

#include <filesystem>
#include <string>

#include "set/files/FileDescriptor.h"
#include "set/guide/GuideDownload.h"

namespace epgset {

/// One guide of a URL. Its last copy that was of use is kept in a folder, so that the set has a guide when
/// the server cannot be reached. What is fetched lies in an unnamed file until it has proved to be of use.
/// Used by one thread at a time.
class DownloadedGuide {
public:
    /// Keeps the copy in `folder`, which need not exist. Reads what is known of a copy that is there.
    DownloadedGuide(std::string url, const std::filesystem::path& folder);

    /// Asks the server for the guide. Where it cannot be had and there is a copy, that is logged and the copy
    /// stays. Throws GuideError when there is no copy either.
    void fetch();

    /// Why the server's guide could not be had or was of no use the last time; empty: it was.
    const std::string& problem() const { return problem_; }

    /// What is to be read: what was fetched, or else the copy.
    std::filesystem::path path() const;

    /// Whether something was fetched that is neither kept nor dropped yet.
    bool isFresh() const { return static_cast<bool>(fresh_); }

    /// Makes what was fetched the copy. Throws GuideError when it cannot be written; it goes on being read.
    void keep();

    /// Goes back to the copy, if there is one and something was fetched that is of no use, for the reason
    /// given; answers whether that is so.
    bool drop(const std::string& problem);

    const std::string& url() const { return url_; }

private:
    void readVersion();
    bool hasCopy() const;

    std::string url_;
    std::filesystem::path copy_;
    std::filesystem::path versionFile_;
    GuideVersion version_;  ///< of the copy
    FileDescriptor fresh_;  ///< what was fetched
    GuideVersion freshVersion_;
    std::string problem_;
};

}  // namespace epgset
