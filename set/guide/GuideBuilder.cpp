#include "set/guide/GuideBuilder.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "set/guide/ChannelOrder.h"
#include "set/guide/TextArchiveWriter.h"

namespace epgset {
namespace {

/// Sorts the channels and answers where each of them went.
std::vector<std::uint32_t> sortChannels(std::vector<Channel>& channels) {
    std::vector<std::uint32_t> order(channels.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return channelRank(channels[left]) < channelRank(channels[right]);
    });
    std::vector<std::uint32_t> newIndex(channels.size());
    std::vector<Channel> sorted;
    sorted.reserve(channels.size());
    for (const std::uint32_t old : order) {
        newIndex[old] = static_cast<std::uint32_t>(sorted.size());
        sorted.push_back(std::move(channels[old]));
    }
    channels = std::move(sorted);
    return newIndex;
}

/// Puts the synopses of programmes, which are of one pool, into `archive`, in their order.
void archiveSynopses(std::vector<Programme>& programmes, TextArchive& archive) {
    TextArchiveWriter writer;
    for (Programme& programme : programmes) {
        const std::string_view text = programme.synopsis.plain().value();
        if (!text.empty()) programme.synopsis = Synopsis(archive, writer.addOfPool(text));
    }
    archive = writer.finish();
}

/// Copies the titles of programmes, each once, and answers what they lie in from here on.
TextPool::Blocks copyTitles(std::vector<Programme>& programmes) {
    TextPool titles;
    for (Programme& programme : programmes) {
        programme.title = titles.add(programme.title);
        programme.series = titles.add(programme.series);
    }
    return titles.takeBlocks();
}

}  // namespace

std::size_t GuideBuilder::addChannel(Channel channel) {
    channel.firstProgramme = 0;
    channel.programmeCount = 0;
    channels_.push_back(std::move(channel));
    return channels_.size() - 1;
}

void GuideBuilder::addProgramme(std::size_t channel, const ProgrammeDraft& programme) {
    if (channel >= channels_.size()) throw std::out_of_range("a programme for a channel that was not added");
    Programme added;
    added.start = programme.start;
    added.stop = programme.stop;
    added.channel = static_cast<std::uint32_t>(channel);
    added.eventId = programme.eventId;
    added.scrambled = programme.scrambled;
    added.title = texts_.add(programme.title);
    added.synopsis = Synopsis(texts_.add(programme.synopsis));
    added.series = texts_.add(programme.series);
    programmes_.push_back(added);
}

std::shared_ptr<const Guide> GuideBuilder::finish() {
    const auto guide = std::make_shared<Guide>();
    const auto newIndex = sortChannels(channels_);
    for (Programme& programme : programmes_) {
        programme.channel = newIndex[programme.channel];
        ++channels_[programme.channel].programmeCount;
    }
    std::stable_sort(programmes_.begin(), programmes_.end(),
                     [](const Programme& left, const Programme& right) {
                         return std::tie(left.channel, left.start) < std::tie(right.channel, right.start);
                     });
    std::uint32_t first = 0;
    for (Channel& channel : channels_) {
        channel.firstProgramme = first;
        first += channel.programmeCount;
    }
    programmes_.shrink_to_fit();
    guide->numbers_.reserve(channels_.size());
    for (const Channel& channel : channels_)
        guide->numbers_.push_back(channelNumber(channel.tvMode, channel.major, channel.minor));

    guide->channels_ = std::exchange(channels_, {});
    guide->programmes_ = std::exchange(programmes_, {});
    guide->texts_ = copyTitles(guide->programmes_);
    archiveSynopses(guide->programmes_, guide->synopses_);
    texts_ = TextPool();
    guide->programmesDropped_ = std::exchange(programmesDropped_, 0);
    return guide;
}

}  // namespace epgset
