#include "set/recorder/PvrState.h"

#include <gtest/gtest.h>

#include "host/CAppUtil.h"
#include "host/CPVRWrapper.h"

namespace epgset {
namespace {

class PvrStateTest : public ::testing::Test {
protected:
    ~PvrStateTest() override { usePvrState(PvrState::On); }

    static void expect(const char* word, int supported, int devices, int formatted) {
        usePvrState(pvrStateOf(word).value());
        EXPECT_EQ(CAppUtil::FlagSupportRecordingSpec(), supported) << word;
        EXPECT_EQ(CPVRWrapper::GetDevTotal(), devices) << word;
        EXPECT_EQ(CPVRWrapper::IsExistRecDevice(), formatted) << word;
    }
};

TEST_F(PvrStateTest, IsOnAtFirst) {
    EXPECT_EQ(pvrState(), PvrState::On);
}

TEST_F(PvrStateTest, SaysWhatTheSetCanRecord) {
    expect("on", 1, 1, 1);
    expect("off", 0, 0, 0);
    expect("no-device", 1, 0, 0);
    expect("unformatted", 1, 1, 0);
}

TEST_F(PvrStateTest, HasNoOtherWords) {
    for (const char* word : {"", "ON", "on ", "none"}) {
        EXPECT_FALSE(pvrStateOf(word)) << word;
    }
}

}  // namespace
}  // namespace epgset
