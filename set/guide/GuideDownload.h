// Fetches a guide from a web server.
#pragma once

#include <string>

namespace epgset {

/// What a server said of a guide that it sent, so that it need not send it again while it stays the same.
struct GuideVersion {
    std::string etag;          ///< empty: it said none
    std::string lastModified;  ///< the same
};

/// Fetches what is at an HTTP or HTTPS URL and appends it to an open file. `version` is the one that there is
/// already, and becomes that of what was fetched. Answers false, with nothing written, when the server says
/// that it is still the same. Waits for as long as bytes come. Throws GuideError, named after the URL, when
/// the guide cannot be had.
bool downloadGuide(const std::string& url, int file, GuideVersion& version);

/// Whether a guide is named by a URL and not by a path.
bool isGuideUrl(const std::string& guide);

}  // namespace epgset
