// The folder that the UPnP control point serves.
#pragma once

#include <filesystem>

namespace epgset {

/// Makes `folder` what UPnP_CD_GetWebRootPath answers; an empty path: none. Whether it holds a device
/// description is looked at each time that it is asked for. To be called before the plug-in is.
void useWebRoot(std::filesystem::path folder);

/// The web root that comes with the set: in "../share/epghost/web-root", seen from the folder of the running
/// program.
std::filesystem::path shippedWebRoot();

}  // namespace epgset
