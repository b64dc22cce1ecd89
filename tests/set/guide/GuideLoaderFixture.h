// Loads guides that a test writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "set/guide/GuideError.h"
#include "set/guide/GuideLoader.h"
#include "set/log/LogCapture.h"
#include "tests/set/guide/TemporaryFolder.h"

namespace epgset::test {

class GuideLoaderTest : public testing::Test {
protected:
    static constexpr std::int64_t kNow = 1787443200;  // 2026-08-23T00:00:00Z

    /// Adds a guide file with that content of <tv>.
    void guide(std::string_view content) {
        const std::string name = "guide" + std::to_string(sources_.guides.size()) + ".xml";
        sources_.guides.push_back(folder_.write(name, "<tv>" + std::string(content) + "</tv>"));
    }

    void lineup(std::string_view content) { sources_.lineup = folder_.write("lineup.toml", content); }

    const Guide& load() {
        sources_.now = kNow;
        loaded_ = loadGuide(sources_, ids_);
        return *loaded_.guide;
    }

    std::vector<std::string> warnings() const {
        return log_.messagesOf("set/guide", Container::Logger::Warning);
    }

    /// "NUMBER NAME" of each channel, in order.
    static std::vector<std::string> listed(const Guide& guide) {
        std::vector<std::string> lines;
        for (const Channel& channel : guide.channels()) {
            std::string number = std::to_string(channel.major);
            if (channel.minor != 0) number += "-" + std::to_string(channel.minor);
            lines.push_back(number + " " + channel.name);
        }
        return lines;
    }

    /// "START-STOP TITLE" of each programme, in order, times in seconds of 2026-08-23.
    static std::vector<std::string> schedule(const Guide& guide) {
        std::vector<std::string> lines;
        for (const Programme& programme : guide.programmes()) {
            lines.push_back(std::to_string(std::int64_t{programme.start} - kNow) + "-" +
                            std::to_string(std::int64_t{programme.stop} - kNow) + " " +
                            std::string(programme.title));
        }
        return lines;
    }

    TemporaryFolder folder_;
    GuideSources sources_;
    EventIds ids_;
    LoadedGuide loaded_;
    LogCapture log_;
};

/// A <programme> on a channel; `time` as "start='...' stop='...'", more elements after the title.
inline std::string programme(const std::string& channel, const std::string& time, const std::string& title,
                             const std::string& more = "") {
    return "<programme channel='" + channel + "' " + time + "><title>" + title + "</title>" + more +
           "</programme>\n";
}

}  // namespace epgset::test
