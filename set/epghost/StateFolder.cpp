#include "set/epghost/StateFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "set/epghost/Options.h"

namespace epgset {
namespace {

[[noreturn]] void fail(const std::filesystem::path& folder, int error) {
    throw StartError("state folder " + folder.string() + ": " + std::generic_category().message(error));
}

/// The same folder without "/" or "/." at its end, so that its parent is what holds it.
std::filesystem::path withoutTrailingSlash(std::filesystem::path folder) {
    while ((folder.filename().empty() || folder.filename() == ".") && folder.has_relative_path() &&
           folder.has_parent_path())
        folder = folder.parent_path();
    return folder;
}

/// 0, or the error number that creating a folder that does not exist would come to.
int obstacleTo(const std::filesystem::path& folder) {
    struct stat status {};
    if (lstat(folder.c_str(), &status) == 0) return ENOENT;  // a link to nowhere
    if (errno != ENOENT) return errno;
    const std::filesystem::path parent = folder.has_parent_path() ? folder.parent_path() : ".";
    if (stat(parent.c_str(), &status) != 0) return errno == ENOENT ? obstacleTo(parent) : errno;
    if (!S_ISDIR(status.st_mode)) return ENOTDIR;
    return access(parent.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

}  // namespace

StateFolder::StateFolder(std::filesystem::path folder) : folder_(withoutTrailingSlash(std::move(folder))) {
    struct stat status {};
    if (stat(folder_.c_str(), &status) == 0) {
        lock();
    } else if (const int error = errno == ENOENT ? obstacleTo(folder_) : errno; error != 0) {
        fail(folder_, error);
    }
}

StateFolder::~StateFolder() {
    if (descriptor_ >= 0) close(descriptor_);
}

void StateFolder::create() {
    if (descriptor_ >= 0) return;
    std::error_code error;
    if (folder_.has_parent_path()) std::filesystem::create_directories(folder_.parent_path(), error);
    if (error) fail(folder_, error.value());
    if (mkdir(folder_.c_str(), S_IRWXU) != 0 && errno != EEXIST) fail(folder_, errno);
    lock();
}

void StateFolder::lock() {
    descriptor_ = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor_ < 0) fail(folder_, errno);
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        close(std::exchange(descriptor_, -1));
        if (error == EWOULDBLOCK) {
            throw StartError("state folder " + folder_.string() + ": in use by another epghost");
        }
        fail(folder_, error);
    }
    if (access(folder_.c_str(), W_OK | X_OK) != 0) {
        const int error = errno;
        close(std::exchange(descriptor_, -1));
        fail(folder_, error);
    }
}

}  // namespace epgset
