#include "tests/support/FakeRecorder.h"

#include <dlfcn.h>

#include "host/CAppUtil.h"
#include "host/CPVRWrapper.h"

namespace {

epgtest::FakeRecorder* recorder = nullptr;

/// The recorder's own function of that symbol.
template <typename Function>
Function* own(const char* symbol) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

std::string numberOf(const TCChannel& channel) {
    return std::to_string(channel.TvMode()) + "-" + std::to_string(channel.Major()) + "-" +
           std::to_string(channel.Minor());
}

}  // namespace

namespace epgtest {

FakeRecorder::FakeRecorder() {
    recorder = this;
}

FakeRecorder::~FakeRecorder() {
    recorder = nullptr;
}

int FakeRecorder::answer(const char* call, int value) {
    calls.emplace_back(call);
    return value;
}

bool FakeRecorder::channel(int number, TCChannel& channel) {
    calls.push_back("channel " + std::to_string(number));
    if (number < 1 || number > static_cast<int>(running.size()) || ended.contains(number)) return false;
    channel = running[static_cast<std::size_t>(number) - 1];
    return true;
}

bool FakeRecorder::stop(const TCChannel& channel, int reserved) {
    calls.push_back("stop " + numberOf(channel) + (reserved == 1 ? "" : " reserved"));
    return stops;
}

}  // namespace epgtest

// These stand before the recorder's own for the whole program.
int CAppUtil::FlagSupportRecordingSpec() {
    static const auto next = own<int()>("_ZN8CAppUtil24FlagSupportRecordingSpecEv");
    return recorder == nullptr ? next() : recorder->answer("model", recorder->model);
}

int CPVRWrapper::GetDevTotal() {
    static const auto next = own<int()>("_ZN11CPVRWrapper11GetDevTotalEv");
    return recorder == nullptr ? next() : recorder->answer("devices", recorder->devices);
}

int CPVRWrapper::IsExistRecDevice() {
    static const auto next = own<int()>("_ZN11CPVRWrapper16IsExistRecDeviceEv");
    return recorder == nullptr ? next() : recorder->answer("formatted", recorder->formatted);
}

int CPVRWrapper::GetCurrentRecordingCount() {
    static const auto next = own<int()>("_ZN11CPVRWrapper24GetCurrentRecordingCountEv");
    if (recorder == nullptr) return next();
    return recorder->answer("count", static_cast<int>(recorder->running.size()));
}

bool CPVRWrapper::GetRecordingChannel(int number, TCChannel& channel) {
    static const auto next = own<bool(int, TCChannel&)>("_ZN11CPVRWrapper19GetRecordingChannelEiR9TCChannel");
    return recorder == nullptr ? next(number, channel) : recorder->channel(number, channel);
}

bool CPVRWrapper::StopRecording(const TCChannel& channel, int reserved) {
    static const auto next =
        own<bool(const TCChannel&, int)>("_ZN11CPVRWrapper13StopRecordingERK9TCChanneli");
    return recorder == nullptr ? next(channel, reserved) : recorder->stop(channel, reserved);
}
