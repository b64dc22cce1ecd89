// A recorder that writes down what it is asked for.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "set/recorder/RecordingOrder.h"

namespace epgtest {

/// Takes each order, but for those of entries that it is to refuse, and records nothing.
class FakeOrderTaker : public epgset::OrderTaker {
public:
    bool begin(const epgset::RecordingOrder& order) override {
        calls.push_back("begin " + std::to_string(order.uid) + " " + std::to_string(order.start));
        orders.push_back(order);
        return !refused.contains(order.uid);
    }

    void end(unsigned long uid, epgset::RecordingEnd why) override {
        static constexpr const char* words[] = {"Ended", "Removed", "Replaced", "SetStops"};
        calls.push_back("end " + std::to_string(uid) + " " + words[static_cast<int>(why)]);
    }

    bool records(unsigned long uid) const override { return !lost.contains(uid); }

    std::set<unsigned long> refused;  ///< UIDs
    std::set<unsigned long> lost;     ///< UIDs whose recordings came to their end by themselves

    std::vector<std::string> calls;  ///< "begin UID START" and "end UID WHY", in order
    std::vector<epgset::RecordingOrder> orders;
};

}  // namespace epgtest
