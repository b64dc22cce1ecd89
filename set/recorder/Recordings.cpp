#include "set/recorder/Recordings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "set/middleware/Clock.h"

namespace epgset {

std::uint64_t Recordings::start(const Channel& channel, unsigned long scheduleUid, std::filesystem::path file,
                                Stop stop) {
    Recording recording{std::make_shared<const Channel>(channel), scheduleUid, std::move(file),
                        clock().now()};
    const std::lock_guard lock(mutex_);
    entries_.push_back({++lastHandle_, std::move(recording), std::move(stop)});
    return lastHandle_;
}

void Recordings::end(std::uint64_t handle) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [handle](const Entry& entry) { return entry.handle == handle; });
}

bool Recordings::stop(int tvMode, int major, int minor) {
    std::vector<Entry> stopped;
    {
        const std::lock_guard lock(mutex_);
        const auto first = std::stable_partition(entries_.begin(), entries_.end(), [&](const Entry& entry) {
            const Channel& channel = *entry.recording.channel;
            return channel.tvMode != tvMode || channel.major != major || channel.minor != minor;
        });
        stopped.assign(std::make_move_iterator(first), std::make_move_iterator(entries_.end()));
        entries_.erase(first, entries_.end());
    }
    for (const Entry& entry : stopped) {
        if (entry.stop) entry.stop();
    }
    return !stopped.empty();
}

std::vector<Recording> Recordings::running() const {
    const std::lock_guard lock(mutex_);
    std::vector<Recording> list;
    list.reserve(entries_.size());
    for (const Entry& entry : entries_)
        list.push_back(entry.recording);
    return list;
}

int Recordings::number() {
    const std::lock_guard lock(mutex_);
    numbered_.clear();
    for (const Entry& entry : entries_)
        numbered_.push_back(entry.handle);
    return static_cast<int>(numbered_.size());
}

std::shared_ptr<const Channel> Recordings::channelOf(int number) const {
    const std::lock_guard lock(mutex_);
    if (number < 1 || static_cast<std::size_t>(number) > numbered_.size()) return nullptr;
    const std::uint64_t handle = numbered_[static_cast<std::size_t>(number) - 1];
    const auto found = std::ranges::find(entries_, handle, &Entry::handle);
    return found == entries_.end() ? nullptr : found->recording.channel;
}

Recordings& recordings() {
    static Recordings list;
    return list;
}

}  // namespace epgset
