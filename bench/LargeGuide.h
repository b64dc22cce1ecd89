// The plug-in filled with a large guide.
#pragma once

#include "bench/SyntheticGuide.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "tests/support/OpenPlugin.h"

namespace epgbench {

/// While it lives, the plug-in's table holds 400 channels with 224 programmes each (89,600, all within
/// seven days), on a clock that stands.
class LargeGuide {
public:
    LargeGuide() {
        epgset::useClock(&clock_);
        epgset::useGuide(syntheticGuide(400, 224));
        epgtest::OpenPlugin::forget();
        plugin = EpgSQLPluginVexmoor::Instance();
    }
    ~LargeGuide() {
        plugin = Container::SharedPtr<EpgSQLPluginVexmoor>();
        epgtest::OpenPlugin::forget();
        epgset::useClock(nullptr);
    }
    LargeGuide(const LargeGuide&) = delete;
    LargeGuide& operator=(const LargeGuide&) = delete;

    Container::SharedPtr<EpgSQLPluginVexmoor> plugin;

private:
    epgset::ManualClock clock_{guideStart};
};

}  // namespace epgbench
