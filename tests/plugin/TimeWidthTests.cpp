#include <gtest/gtest.h>

#include <ctime>

namespace epgtest {
namespace {

TEST(TimeWidth, IsThatOfTheCLibraryOnAnOldSet) {
    EXPECT_EQ(sizeof(std::time_t), 4U) << "the test program is built with other times than its name says";
}

}  // namespace
}  // namespace epgtest
