#include "host/CPVRWrapper.h"

#include "set/recorder/PvrState.h"
#include "set/recorder/Recordings.h"

int CPVRWrapper::GetDevTotal() {
    const epgset::PvrState state = epgset::pvrState();
    return state == epgset::PvrState::On || state == epgset::PvrState::Unformatted ? 1 : 0;
}

int CPVRWrapper::IsExistRecDevice() {
    return epgset::pvrState() == epgset::PvrState::On ? 1 : 0;
}

int CPVRWrapper::GetCurrentRecordingCount() {
    return epgset::recordings().number();
}

bool CPVRWrapper::GetRecordingChannel(int number, TCChannel& channel) {
    const auto numbered = epgset::recordings().channelOf(number);
    if (!numbered) return false;
    channel = TCChannel(numbered);
    return true;
}

bool CPVRWrapper::StopRecording(const TCChannel& channel, int /*reserved*/) {
    return epgset::recordings().stop(channel.TvMode(), channel.Major(), channel.Minor());
}
