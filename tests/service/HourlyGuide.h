// A guide of a programme an hour.
#pragma once

#include <string>

namespace epgset::test {

/// One channel, number 1 of the antenna AIR, with programmes "Hour 12" to "Hour 23" of 2026-08-23 (UTC), less
/// one of them.
inline std::string hourlyGuide(int leftOut = 0) {
    std::string text = "<tv><channel id=\"a\"><display-name>A</display-name></channel>";
    for (int hour = 12; hour < 24; ++hour) {
        if (hour == leftOut) continue;
        const std::string number = std::to_string(hour);
        text += "<programme channel=\"a\" start=\"20260823" + number + "0000\" stop=\"20260823" + number +
                "5959\"><title>Hour " + number + "</title><desc>It is on.</desc></programme>";
    }
    return text + "</tv>";
}

}  // namespace epgset::test
