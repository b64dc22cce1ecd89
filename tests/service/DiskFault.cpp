// A disk that does not take what is written, for a process into which this library is loaded before others:
// while the file named by EPG_DISK_FAULT exists, writing to regular files fails with the error number that
// it holds.

// Functions of 32 and of 64 bits under their own names, whatever the build takes for off_t.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

/// The fault as it is now; 0 for none.
int faultOf(int file) {
    const char* const control = std::getenv("EPG_DISK_FAULT");
    if (control == nullptr) return 0;
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const int opened = open(control, O_RDONLY | O_CLOEXEC);
    if (opened < 0) return 0;
    char number[16] = {};
    const ssize_t length = read(opened, number, sizeof number - 1);
    close(opened);
    return length > 0 ? std::atoi(number) : 0;
}

bool fails(int file) {
    const int before = errno;
    const int fault = faultOf(file);
    errno = fault == 0 ? before : fault;
    return fault != 0;
}

/// The function of that name that this one stands before.
template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

ssize_t write(int file, const void* bytes, size_t count) {
    static const auto original = next<ssize_t (*)(int, const void*, size_t)>("write");
    return fails(file) ? -1 : original(file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
    static const auto original = next<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
    return fails(file) ? -1 : original(file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
    static const auto original = next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    return fails(file) ? -1 : original(file, bytes, count, offset);
}

int ftruncate(int file, off_t length) noexcept {
    static const auto original = next<int (*)(int, off_t)>("ftruncate");
    return fails(file) ? -1 : original(file, length);
}

int ftruncate64(int file, off64_t length) noexcept {
    static const auto original = next<int (*)(int, off64_t)>("ftruncate64");
    return fails(file) ? -1 : original(file, length);
}
}
#pragma GCC visibility pop
