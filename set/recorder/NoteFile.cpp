#include "set/recorder/NoteFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "set/files/FileWriting.h"

namespace epgset {
namespace {

/// How much longer than the first note the last one may be: it has the reason of the end and the source's
/// latest trouble beside it.
constexpr std::size_t roomToGrow = 2048;

std::filesystem::path beside(const std::filesystem::path& path, const char* extension) {
    std::filesystem::path other = path;
    other += extension;
    return other;
}

FileDescriptor createFile(const std::filesystem::path& path, int flags) {
    return FileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | flags, 0666));
}

std::error_code writeAndSync(const FileDescriptor& file, std::string_view content) {
    if (!file) return systemError();
    std::size_t written = 0;
    if (const auto error = writeAll(file.get(), content, written)) return error;
    // A file that had more room than content.
    if (::ftruncate(file.get(), static_cast<off_t>(content.size())) != 0) return systemError();
    return ::fsync(file.get()) == 0 ? std::error_code() : systemError();
}

/// Lets `from`, which is complete, take the place of `to`.
std::error_code takePlace(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (!error) syncFolder(to.parent_path());
    return error;
}

}  // namespace

NoteFile::NoteFile(std::filesystem::path path, std::string_view text, std::error_code& error)
    : path_(std::move(path)) {
    const FileDescriptor file = createFile(path_, O_EXCL);
    error = writeAndSync(file, text);
    if (!error) error = keepRoom(text.size() + roomToGrow);
    if (error && file) ::unlink(path_.c_str());
}

NoteFile::~NoteFile() {
    if (spare_) ::unlink(beside(path_, spareExtension).c_str());
}

std::error_code NoteFile::keepRoom(std::size_t bytes) {
    const auto path = beside(path_, spareExtension);
    spare_ = createFile(path, O_TRUNC);
    if (!spare_) return systemError();
    const int failure = ::posix_fallocate(spare_.get(), 0, static_cast<off_t>(bytes));
    if (failure == 0) return {};
    ::unlink(path.c_str());
    spare_.close();
    const std::error_code error(failure, std::generic_category());
    return isFull(error) ? error : std::error_code();
}

std::error_code NoteFile::replace(std::string_view text) {
    return replaceFile(path_, text);
}

std::error_code NoteFile::finish(std::string_view text) {
    if (!spare_) return replaceFile(path_, text);
    const FileDescriptor spare = std::move(spare_);
    const auto path = beside(path_, spareExtension);
    std::error_code error = writeAndSync(spare, text);
    if (!error) error = takePlace(path, path_);
    if (error) ::unlink(path.c_str());
    return error;
}

std::error_code replaceFile(const std::filesystem::path& path, std::string_view content) {
    const auto replacement = beside(path, NoteFile::replacementExtension);
    const FileDescriptor file = createFile(replacement, O_TRUNC);
    std::error_code error = writeAndSync(file, content);
    if (!error) error = takePlace(replacement, path);
    if (error && file) ::unlink(replacement.c_str());
    return error;
}

}  // namespace epgset
