#include "host/AppTV.h"

#include "set/middleware/GuideTelevision.h"
#include "set/middleware/GuideWindow.h"

namespace {

// Made before any code runs: whoever is loaded later finds a television.
constinit epgset::GuideTelevision television;
constinit epgset::GuideWindow window;

}  // namespace

AppTV* g_pAppTV = &television;
AppWindow* g_pAppWindow = &window;

AppTV::~AppTV() = default;

AppWindow::~AppWindow() = default;

epgset::GuideWindow& epgset::guideWindow() {
    return window;
}
