#include "set/epghost/OpenFileLimit.h"

#include <fmt/format.h>
#include <sys/resource.h>

#include "set/epghost/Options.h"

namespace epgset {
namespace {

/// Guides, databases, recordings and the like.
constexpr rlim_t others = 256;

}  // namespace

void allowOpenFiles(std::size_t count, const char* option) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;  // nobody can tell
    const rlim_t needed = static_cast<rlim_t>(count) + others;
    if (limit.rlim_cur >= needed) return;
    const rlimit more{needed, limit.rlim_max};
    if (needed > limit.rlim_max || setrlimit(RLIMIT_NOFILE, &more) != 0) {
        const rlim_t allowed = needed > limit.rlim_max ? limit.rlim_max : limit.rlim_cur;
        throw StartError(fmt::format("{}: {} files would be open, {} may be (ulimit -n, LimitNOFILE=)",
                                     option, needed, allowed));
    }
}

}  // namespace epgset
