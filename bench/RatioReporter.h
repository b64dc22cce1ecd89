// Prints what was measured as one table, each figure beside its floor.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace epgbench {

/// Collects the median of each benchmark. A benchmark named "X" is set against the one named
/// "X/floor"; what has no floor stands alone.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::vector<std::string> order_;
    std::map<std::string, double> milliseconds_;
};

}  // namespace epgbench
