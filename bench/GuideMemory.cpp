// Resident memory of a guide file in the cache, a programme.
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <memory>
#include <string>

#include "bench/SyntheticGuide.h"
#include "set/guide/GuideLoader.h"

namespace {

/// Resident memory of this process in bytes, with what is free given back first.
long residentBytes() {
    malloc_trim(0);
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: guide_memory GUIDE\n");
        return 2;
    }
    try {
        epgset::EventIds ids;
        epgset::GuideSources sources;
        sources.guides = {std::string(argv[1])};
        sources.now = epgbench::guideStart;
        const long before = residentBytes();
        const std::shared_ptr<const epgset::Guide> guide = epgset::loadGuide(sources, ids).guide;
        const long bytes = residentBytes() - before;
        const auto programmes = static_cast<long>(guide->programmes().size());
        std::printf("guide cache: %ld programmes, %ld bytes resident, %ld a programme\n", programmes, bytes,
                    programmes == 0 ? 0 : bytes / programmes);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "guide_memory: %s\n", error.what());
        return 2;
    }
    return 0;
}
