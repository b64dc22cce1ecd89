#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

EpghostProcess::Arguments withBasics(const TemporaryFolder& folder,
                                     const EpghostProcess::Arguments& options) {
    EpghostProcess::Arguments all = {"--port", "0", "--state", (folder.path() / "state").string()};
    all.insert(all.end(), options.begin(), options.end());
    return all;
}

}  // namespace

RunningSet::RunningSet(const EpghostProcess::Arguments& options, const EpghostProcess::Arguments& environment)
    : process_(withBasics(folder_, options), environment), url_(process_.waitUntilReady()) {}

std::unique_ptr<RunningSet> ServiceFixture::set_;

void ServiceFixture::startSet(const EpghostProcess::Arguments& options) {
    set_ = std::make_unique<RunningSet>(options);
}

}  // namespace epgset::test
