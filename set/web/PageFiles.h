// The files of the guide page.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "set/web/WebMessage.h"

namespace epgset {

/// A folder's files, read into memory once: no request reaches the file system.
class PageFiles {
public:
    /// No files.
    PageFiles() = default;

    /// Reads the folder and what is below it: files of the kinds that a page is made of, of 4 MiB at the most
    /// each. What is left out is logged; a folder that is not there, or holds no "index.html", gives no
    /// files.
    explicit PageFiles(const std::filesystem::path& folder);

    bool empty() const { return files_.empty(); }

    /// The answer to a GET or HEAD for a path, told by its segments; for a folder its "index.html". Nothing
    /// when there is no such file.
    std::optional<WebResponse> answer(const WebRequest& request,
                                      const std::vector<std::string>& segments) const;

private:
    struct File {
        const char* contentType;
        std::shared_ptr<const std::string> body;
        std::string tag;
        std::string policy;  ///< what a browser may load into it
    };

    void read(const std::filesystem::path& folder);

    std::map<std::vector<std::string>, File> files_;
};

/// The guide page that comes with the set: in "../share/epghost/web", seen from the folder of the running
/// program.
std::filesystem::path shippedPage();

}  // namespace epgset
