// A television window that keeps what it is tuned to.
#pragma once

#include <utility>
#include <vector>

#include "host/AppTV.h"

namespace epgtest {

/// While it lives, stands where the plug-in looks for the television's window, and tunes to nothing.
class RecordingWindow : public AppWindow {
public:
    RecordingWindow() : set_(g_pAppWindow) { g_pAppWindow = this; }
    ~RecordingWindow() override { g_pAppWindow = set_; }
    RecordingWindow(const RecordingWindow&) = delete;
    RecordingWindow& operator=(const RecordingWindow&) = delete;

    void ChangeChannel(int major, int minor) override { tuned.emplace_back(major, minor); }

    std::vector<std::pair<int, int>> tuned;  ///< major and minor, in order

private:
    AppWindow* set_;
};

}  // namespace epgtest
