#include "set/epghost/ProcessZone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace epgset {
namespace {

/// Sets TZ and puts it back at the end.
class ProcessZoneTest : public ::testing::Test {
protected:
    ProcessZoneTest() {
        if (const char* value = std::getenv("TZ")) before_ = value;
    }
    ~ProcessZoneTest() override {
        if (before_)
            setenv("TZ", before_->c_str(), 1);
        else
            unsetenv("TZ");
    }

    static std::string nameFor(const char* variable) {
        setenv("TZ", variable, 1);
        return processZoneName();
    }

private:
    std::optional<std::string> before_;
};

TEST_F(ProcessZoneTest, IsNamedByTheEnvironment) {
    EXPECT_EQ("Europe/Paris", nameFor("Europe/Paris"));
    EXPECT_EQ("Europe/Paris", nameFor(":Europe/Paris"));
    EXPECT_EQ("Asia/Tokyo", nameFor("/usr/share/zoneinfo/Asia/Tokyo"));
    EXPECT_EQ("CET-1CEST", nameFor("CET-1CEST"));
    EXPECT_EQ("UTC", nameFor(""));
}

TEST_F(ProcessZoneTest, IsWellFormedWhateverTheEnvironmentHolds) {
    EXPECT_EQ("Zone\xEF\xBF\xBD/\xEF\xBF\xBD", nameFor("Zone\xFF/\xC3"));
}

}  // namespace
}  // namespace epgset
