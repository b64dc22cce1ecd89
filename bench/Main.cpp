// Runs the benchmarks: medians of repetitions, one table.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/RatioReporter.h"

int main(int argc, char** argv) {
    std::vector<char*> arguments(argv, argv + argc);
    std::string repetitions = "--benchmark_repetitions=5";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {repetitions.data(), aggregates.data()});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    epgbench::RatioReporter reporter;
    return benchmark::RunSpecifiedBenchmarks(&reporter) == 0 ? 1 : 0;
}
