#include "set/web/TaskQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

namespace epgset {
namespace {

using ::testing::ElementsAre;

constexpr ClientAddress first{1};
constexpr ClientAddress second{2};

/// Notes the tasks that run. The queue is held up until the test says so.
class TaskQueueTest : public ::testing::Test {
protected:
    void hold() {
        std::promise<void> held;
        queue_.post({}, [this, &held] {
            held.set_value();
            go_.get_future().wait();
        });
        held.get_future().wait();
    }

    bool post(const ClientAddress& client, const std::string& name) {
        return queue_.post(client, [this, name] { ran_.push_back(name); });
    }

    std::vector<std::string> finish() {
        go_.set_value();
        queue_.close();
        return ran_;
    }

    std::promise<void> go_;
    std::vector<std::string> ran_;
    TaskQueue queue_;
};

TEST_F(TaskQueueTest, RunsTheTasksOfAClientInTheirOrder) {
    hold();
    for (const char* name : {"a", "b", "c"})
        EXPECT_TRUE(post(first, name));
    EXPECT_THAT(finish(), ElementsAre("a", "b", "c"));
}

TEST_F(TaskQueueTest, RunsOneTaskOfEachClientInTurn) {
    hold();
    for (const char* name : {"a1", "a2", "a3"})
        post(first, name);
    for (const char* name : {"b1", "b2"})
        post(second, name);
    EXPECT_THAT(finish(), ElementsAre("a1", "b1", "a2", "b2", "a3"));
}

TEST_F(TaskQueueTest, TakesNothingOnceItIsClosed) {
    queue_.close();
    EXPECT_FALSE(post(first, "late"));
    EXPECT_TRUE(ran_.empty());
}

}  // namespace
}  // namespace epgset
