#include "host/CAppUtil.h"

#include "set/recorder/PvrState.h"

int CAppUtil::FlagSupportRecordingSpec() {
    return epgset::pvrState() == epgset::PvrState::Off ? 0 : 1;
}
