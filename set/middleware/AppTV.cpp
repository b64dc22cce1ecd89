#include "host/AppTV.h"

#include "set/middleware/GuideTelevision.h"

namespace {

// Made before any code runs: whoever is loaded later finds a television.
constinit epgset::GuideTelevision television;

}  // namespace

AppTV* g_pAppTV = &television;
AppWindow* g_pAppWindow = nullptr;

AppTV::~AppTV() = default;

AppWindow::~AppWindow() = default;
