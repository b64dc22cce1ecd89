// What the model can do.
#pragma once

#include "host/Export.h"

class HOST_API CAppUtil {
public:
    /// Non-zero when the model supports recording.
    static int FlagSupportRecordingSpec();
};
