// A recorder of the test's own.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/TCChannel.h"

namespace epgtest {

/// While it lives, what the plug-in is told about recording, each answer on its own, and every question in
/// order: "model", "devices", "formatted", "count", "channel 1", "stop 0-7-2". One at a time. A program
/// that uses it compiles FakeRecorder.cpp in.
class FakeRecorder {
public:
    FakeRecorder();
    ~FakeRecorder();
    FakeRecorder(const FakeRecorder&) = delete;
    FakeRecorder& operator=(const FakeRecorder&) = delete;

    int model = 1;      ///< whether the model supports recording
    int devices = 1;    ///< storage devices attached
    int formatted = 1;  ///< whether one of them is formatted

    std::vector<TCChannel> running;  ///< by number, from 1
    std::set<int> ended;             ///< numbers whose recording has ended since it was counted
    bool stops = true;               ///< whether a recording that is to stop does

    std::vector<std::string> calls;

    // For the functions that stand before the recorder's own.
    int answer(const char* call, int value);
    bool channel(int number, TCChannel& channel);
    bool stop(const TCChannel& channel, int reserved);
};

}  // namespace epgtest
