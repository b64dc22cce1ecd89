#include "bench/RatioReporter.h"

#include <cstdio>

namespace epgbench {

bool RatioReporter::ReportContext(const Context& /*context*/) {
    return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
            continue;
        }
        if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
        const std::string& name = run.run_name.function_name;
        if (milliseconds_.count(name) == 0) order_.push_back(name);
        milliseconds_[name] = run.GetAdjustedCPUTime();
    }
}

void RatioReporter::Finalize() {
    std::printf("%-46s %12s %12s %8s\n", "figure", "ms", "floor ms", "ratio");
    for (const std::string& name : order_) {
        if (name.size() > 6 && name.compare(name.size() - 6, 6, "/floor") == 0) continue;
        const auto floor = milliseconds_.find(name + "/floor");
        if (floor == milliseconds_.end())
            std::printf("%-46s %12.4f\n", name.c_str(), milliseconds_[name]);
        else
            std::printf("%-46s %12.4f %12.4f %8.2f\n", name.c_str(), milliseconds_[name], floor->second,
                        milliseconds_[name] / floor->second);
    }
}

}  // namespace epgbench
