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

}  // namespace

StateFolder::StateFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::error_code error;
    if (std::filesystem::exists(folder_, error)) lock();
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
