// Runs a target on files, one after the other: "fuzz_replay TARGET FILE|FOLDER...". Needs no libFuzzer.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

/// The file, or the files of the folder by name.
std::vector<fs::path> filesOf(const fs::path& path) {
    if (!fs::is_directory(path)) return {path};
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(path))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot be opened: " + path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

void replay(const epgfuzz::Target& target, const fs::path& path) {
    const std::vector<fs::path> files = filesOf(path);
    if (files.empty()) throw std::runtime_error("no files: " + path.string());
    for (const fs::path& file : files) {
        // Before it runs: what aborts the process is the file named last.
        std::printf("%s %s\n", target.name.data(), file.c_str());
        std::fflush(stdout);
        target.run(contentOf(file));
    }
}

}  // namespace

int main(int count, char** arguments) {
    const epgfuzz::Target* const target = count > 2 ? epgfuzz::findTarget(arguments[1]) : nullptr;
    if (target == nullptr) {
        std::fputs("fuzz_replay TARGET FILE|FOLDER..., where TARGET is one of\n", stderr);
        for (const epgfuzz::Target& known : epgfuzz::targets())
            std::fprintf(stderr, "  %s\n", known.name.data());
        return 2;
    }
    try {
        for (int i = 2; i < count; ++i)
            replay(*target, arguments[i]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_replay: %s\n", error.what());
        return 1;
    }
    return 0;
}
