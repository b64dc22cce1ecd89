#include "tests/service/ServerProcess.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace epgset::test {
namespace {

std::string folderOf(pid_t process) {
    return "/proc/" + std::to_string(process);
}

}  // namespace

std::size_t openFilesOf(pid_t process) {
    const std::filesystem::directory_iterator files(folderOf(process) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::size_t peakMemoryOf(pid_t process) {
    std::ifstream status(folderOf(process) + "/status");
    for (std::string word; status >> word;) {
        std::size_t kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes) return kibibytes * 1024;
    }
    return 0;
}

void beginPeakMemoryOf(pid_t process) {
    std::ofstream(folderOf(process) + "/clear_refs") << "5";
}

}  // namespace epgset::test
