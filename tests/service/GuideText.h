// Guides that tests write, and when a set has them.
#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "tests/support/HttpClient.h"

namespace epgset::test {

/// The text of a guide of so many channels.
inline std::string guideOf(int channels) {
    std::string text = "<tv>\n";
    for (int number = 1; number <= channels; ++number) {
        const std::string name = std::to_string(number);
        text += "<channel id=\"c" + name + "\"><display-name>" + name + "</display-name></channel>\n";
    }
    return text + "</tv>\n";
}

/// Waits until the guide in use has so many channels, for 10 s, which is how soon a set is to follow a file.
inline bool reachesChannels(HttpClient& client, int count) {
    const std::string wanted = "\"channels\":" + std::to_string(count) + ",";
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const std::string status = client.get("/set/status").body;
        if (status.substr(0, status.find("\"guides\"")).find(wanted) != std::string::npos) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace epgset::test
