// A television of the test's own in front of the set's.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "host/AppTV.h"

namespace epgtest {

/// What a middleware list is filled with, entry by entry; an entry may be empty.
template <typename T>
class FixedEntries : public SnapshotList<T>::Source {
public:
    explicit FixedEntries(std::vector<std::optional<T>> entries) : entries_(std::move(entries)) {}

    int Count() const override { return static_cast<int>(entries_.size()); }
    void Make(int index, std::optional<T>& object) const override {
        const std::optional<T>& entry = entries_[static_cast<std::size_t>(index)];
        if (entry) object.emplace(*entry);
    }

private:
    std::vector<std::optional<T>> entries_;
};

/// While it lives, stands where the plug-in looks for the television: keeps what it is asked for and
/// answers as the set's own does, but for what a test changes.
class ForwardingTelevision : public AppTV {
public:
    ForwardingTelevision() : set_(g_pAppTV) { g_pAppTV = this; }
    ~ForwardingTelevision() override { g_pAppTV = set_; }
    ForwardingTelevision(const ForwardingTelevision&) = delete;
    ForwardingTelevision& operator=(const ForwardingTelevision&) = delete;

    int GetChannelKeyList(TCObjectSortedList* list, const TCChannel* pattern, int* count) override {
        sourceTypesAsked.push_back(pattern->Type());
        return set_->GetChannelKeyList(list, pattern, count);
    }

    int ExistChannel(const TCChannelKey* pKey, TCChannel* pChannel, int reserved) override {
        if (pKey->Major() == vanishedMajor) return 0;
        return set_->ExistChannel(pKey, pChannel, reserved);
    }

    int GetProgramList(CCSortedList* list, const TCChannel* channel, long long start,
                       long long duration) override {
        programmesAsked.emplace_back(start, duration);
        if (programmeList) return programmeList(*list);
        return set_->GetProgramList(list, channel, start, duration);
    }

    void GetTimeZone(int* reserved, int* minutesEast) override { set_->GetTimeZone(reserved, minutesEast); }

    std::vector<int> sourceTypesAsked;                             ///< of the key lists, in order
    std::vector<std::pair<long long, long long>> programmesAsked;  ///< start and duration, in order
    std::optional<short> vanishedMajor;                            ///< its channel does not exist
    std::function<int(CCSortedList& list)> programmeList;          ///< answers in the set's place

private:
    AppTV* set_;
};

}  // namespace epgtest
