// Keeps the guide up to date while the set runs.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "set/epghost/GuideReload.h"
#include "set/epghost/GuideSource.h"
#include "set/epghost/GuideWatch.h"
#include "set/guide/Guide.h"

namespace epgset {

/// Loads the guide again when a file of it changes, when its servers are to be asked again, when it will soon
/// be of no more use, and when somebody asks. A load that fails is logged; the guide stays as it was. Used by
/// one thread.
class GuideRefresh {
public:
    /// Files that change from now on are seen. The source must outlive the object, and this all that needs
    /// cleaning when the set stops: see GuideReload.
    explicit GuideRefresh(GuideSource& source);

    /// Has the guide loaded again, from its servers too, as soon as no other load goes on.
    void ask();

    /// Does what is due. A guide that was loaded is handed to `putInUse`. Answers when to be called again.
    std::chrono::milliseconds check(const std::function<void(std::shared_ptr<const Guide>)>& putInUse);

private:
    GuideSource& source_;
    GuideWatch watch_;
    GuideReload reload_;
    bool load_ = false;        ///< when nothing is loading
    bool askServers_ = false;  ///< with the next load
};

}  // namespace epgset
