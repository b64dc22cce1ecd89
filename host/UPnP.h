// The set's UPnP control point.
#pragma once

#include "host/Export.h"

extern "C" {

/// Sets `*path` to the folder that the control point serves, without a "/" at its end, as a new text that
/// the caller releases with free; leaves it null on failure. Answers 0 on success.
HOST_API int UPnP_CD_GetWebRootPath(char** path);
}
