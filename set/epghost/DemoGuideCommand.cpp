#include "set/epghost/DemoGuideCommand.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <ctime>
#include <iostream>
#include <limits>
#include <memory>
#include <string>

#include "set/demo/SampleGuide.h"
#include "set/epghost/Options.h"
#include "set/epghost/StandardOutput.h"
#include "set/epghost/TimeOption.h"

namespace epgset {
namespace {

constexpr std::int64_t secondsADay = 86400;
constexpr std::int64_t minutesADay = 1440;

struct DemoGuideOptions {
    SampleGuideSize size;
    std::string start;
};

/// Fills in what was not given and refuses what does not go together.
void complete(DemoGuideOptions& options, bool programmesGiven) {
    SampleGuideSize& size = options.size;
    const auto channels = static_cast<std::uint64_t>(size.channels);
    const auto days = static_cast<std::uint64_t>(size.days);
    if (!programmesGiven) size.programmes = channels * days * SampleGuideSize::programmesOfADay;
    if (size.programmes > channels * days * minutesADay) {
        throw StartError(
            fmt::format("--programmes: {} are more than one a minute of each channel", size.programmes));
    }
    if (options.start.empty()) {
        const std::int64_t now = std::time(nullptr);
        size.start = now - now % secondsADay;
    } else if (const auto start = parseTimeOption(options.start)) {
        size.start = *start;
    } else {
        throw StartError("--start: \"" + options.start + "\" is no time such as 2026-08-23T00:00:00Z");
    }
    if (size.start + size.days * secondsADay > std::numeric_limits<std::uint32_t>::max()) {
        throw StartError("--start: the guide would go on beyond the year 2106");
    }
}

int printGuide(const SampleGuideSize& size) {
    writeSampleGuide(size, std::cout);
    finishStandardOutput();
    return 0;
}

}  // namespace

void addDemoGuideCommand(CLI::App& app, std::function<int()>& task) {
    CLI::App* const command = app.add_subcommand(
        "demo-guide",
        "Print an XMLTV guide of a stated size. The same options, --start among them, give the same bytes");
    const auto options = std::make_shared<DemoGuideOptions>();
    SampleGuideSize& size = options->size;
    command
        ->add_option("--channels", size.channels,
                     fmt::format("How many channels, 1 to {}", SampleGuideSize::maxChannels))
        ->check(CLI::Range(1, SampleGuideSize::maxChannels).description(""))
        ->type_name("N")
        ->capture_default_str();
    command
        ->add_option(
            "--days", size.days,
            fmt::format("How many days each channel's programmes fill, 1 to {}", SampleGuideSize::maxDays))
        ->check(CLI::Range(1, SampleGuideSize::maxDays).description(""))
        ->type_name("D")
        ->capture_default_str();
    const CLI::Option* const programmes =
        command
            ->add_option("--programmes", size.programmes,
                         "How many programmes in all, spread over the channels")
            ->check(CLI::NonNegativeNumber.description(""))
            ->type_name("TOTAL")
            ->default_str(fmt::format("{} a channel and day", SampleGuideSize::programmesOfADay));
    command->add_option("--seed", size.seed, "Another number makes another guide")
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("S")
        ->capture_default_str();
    command->add_option("--start", options->start, "When the first programmes start (ISO 8601)")
        ->type_name("TIME")
        ->default_str("today at midnight, UTC");
    command->callback([&task, options, programmes] {
        complete(*options, programmes->count() > 0);
        task = [options] { return printGuide(options->size); };
    });
}

}  // namespace epgset
