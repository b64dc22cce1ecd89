// The adapter's functions one by one: middleware objects made by hand, and the texts that come out.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "set/guide/Guide.h"
#include "set/text/Utf16.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/PluginTest.h"

namespace epgtest {

/// A text that the adapter handed out, which is released; nothing for null.
inline std::optional<std::string> taken(char* text) {
    const HeapText owned(text);
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

/// A text that a record owns; nothing for null.
inline std::optional<std::string> shown(const char* text) {
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

/// A text as an entry of the reminder store holds it, its units in the given byte order.
inline CRemindInfo::Text unitsOf(std::string_view utf8, std::endian order) {
    CRemindInfo::Text units(epgset::utf16Length(utf8), 0);
    const auto bytes = std::as_writable_bytes(std::span(units.data(), units.size()));
    epgset::utf16FromUtf8(utf8, order, {reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()});
    return units;
}

/// Makes a text with each of its allocations failing in turn: whichever fails, there is no text.
template <typename Make>
void expectNoneWithoutMemory(const Make& make) {
    const int allocations = withEachAllocationFailing([&make](int n, const FailingAllocation& fault) {
        const std::optional<std::string> text = make();
        EXPECT_EQ(text.has_value(), !fault.happened()) << "allocation " << n;
    });
    EXPECT_GT(allocations, 0);
}

/// A log message with its level.
using LogLine = std::pair<Container::Logger::Level, std::string>;

class AdapterTest : public PluginTest {
protected:
    /// A digital, unscrambled television channel 7-2 "News 24" on AIR, to be changed at will.
    static epgset::Channel plainChannel() {
        epgset::Channel channel;
        channel.name = "News 24";
        channel.tvMode = Air;
        channel.major = 7;
        channel.minor = 2;
        return channel;
    }

    /// A programme "Show", event 1234, in the first hour of 1970, to be changed at will.
    static epgset::Programme plainProgramme() {
        epgset::Programme programme;
        programme.start = 0;
        programme.stop = 3600;
        programme.eventId = 1234;
        programme.title = "Show";
        return programme;
    }

    static TCChannel middleware(const epgset::Channel& channel) {
        return TCChannel(std::make_shared<const epgset::Channel>(channel));
    }

    static TCProgram middleware(const epgset::Programme& programme) {
        return TCProgram(std::make_shared<const epgset::Programme>(programme));
    }

    /// A channel of that number.
    static TCChannel numbered(int tvMode, int major, int minor) {
        auto channel = plainChannel();
        channel.tvMode = tvMode;
        channel.major = static_cast<std::int16_t>(major);
        channel.minor = static_cast<std::int16_t>(minor);
        return middleware(channel);
    }

    /// A channel's mode, number and name, "(none)" for none.
    static std::string described(TCChannel* channel) {
        if (channel == nullptr) return "(none)";
        return std::to_string(channel->TvMode()) + ":" + std::to_string(channel->Major()) + "-" +
               std::to_string(channel->Minor()) + " " + taken(t_get_channel_name(channel)).value_or("");
    }

    /// What the adapter logged, with the levels.
    std::vector<LogLine> logged() const {
        std::vector<LogLine> lines;
        for (const auto& record : log.records())
            if (record.logger == "Vexmoor/EpgSQLPluginVexmoorUtil")
                lines.emplace_back(record.level, record.message);
        return lines;
    }
};

}  // namespace epgtest
