#include "host/SnapshotList.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "host/TCChannelKey.h"

namespace epgset {
namespace {

using List = SnapshotList<TCChannelKey>;

/// Keys with the majors 10, 11 and so on; the entry `empty` has none. Counts what it makes.
class CountingSource : public List::Source {
public:
    explicit CountingSource(int count, int empty = -1) : count_(count), empty_(empty) {}

    int Count() const override { return count_; }

    void Make(int index, std::optional<TCChannelKey>& key) const override {
        ++made;
        if (index != empty_) key.emplace(2, static_cast<short>(10 + index), short{0});
    }

    mutable int made = 0;

private:
    int count_;
    int empty_;
};

TEST(SnapshotList, IsEmptyWhenNew) {
    List list;
    EXPECT_EQ(list.Size(), 0);
    EXPECT_FALSE(list.Seek(List::First, 0));
    EXPECT_FALSE(list.Seek(List::Last, 0));
    EXPECT_EQ(list.Data(), nullptr);
    list.Delete();
    list.Destroy();
    EXPECT_EQ(list.Size(), 0);
}

TEST(SnapshotList, TakesNoPositionWhenItIsFilled) {
    List list;
    list.Fill(std::make_shared<CountingSource>(3));
    EXPECT_EQ(list.Size(), 3);
    EXPECT_EQ(list.Data(), nullptr);
}

TEST(SnapshotList, IsWalkedFromTheFirstToTheLast) {
    List list;
    list.Fill(std::make_shared<CountingSource>(3));
    int walked = 0;
    for (bool more = list.Seek(List::First, 0); more; more = list.Seek(List::Current, 1)) {
        EXPECT_EQ(list.Data()->Major(), 10 + walked);
        ++walked;
    }
    EXPECT_EQ(walked, 3);
}

TEST(SnapshotList, SeeksFromEitherEnd) {
    List list;
    list.Fill(std::make_shared<CountingSource>(5));
    ASSERT_TRUE(list.Seek(List::First, 2));
    EXPECT_EQ(list.Data()->Major(), 12);
    ASSERT_TRUE(list.Seek(List::Last, -1));
    EXPECT_EQ(list.Data()->Major(), 13);
    ASSERT_TRUE(list.Seek(List::Current, -3));
    EXPECT_EQ(list.Data()->Major(), 10);
}

TEST(SnapshotList, StaysWhereItIsWhenThereIsNoSuchEntry) {
    List list;
    list.Fill(std::make_shared<CountingSource>(2));
    ASSERT_TRUE(list.Seek(List::Last, 0));
    EXPECT_FALSE(list.Seek(List::Current, 1));
    EXPECT_FALSE(list.Seek(List::First, -1));
    EXPECT_FALSE(list.Seek(List::Current, 2147483647));
    EXPECT_EQ(list.Data()->Major(), 11);
}

TEST(SnapshotList, MakesAnObjectOnceWhenItIsAskedFor) {
    const auto source = std::make_shared<CountingSource>(1000);
    List list;
    list.Fill(source);
    EXPECT_EQ(source->made, 0);
    ASSERT_TRUE(list.Seek(List::First, 500));
    const TCChannelKey* key = list.Data();
    EXPECT_EQ(list.Data(), key);
    EXPECT_EQ(source->made, 1);
    ASSERT_TRUE(list.Seek(List::Last, 0));
    list.Data();
    EXPECT_EQ(key->Major(), 510);  // objects stay where they are
}

TEST(SnapshotList, MakesAnObjectAnewAfterItWasDeleted) {
    const auto source = std::make_shared<CountingSource>(2);
    List list;
    list.Fill(source);
    ASSERT_TRUE(list.Seek(List::First, 0));
    list.Delete();  // nothing made yet
    list.Data();
    list.Delete();
    EXPECT_EQ(list.Size(), 2);
    EXPECT_EQ(list.Data()->Major(), 10);
    EXPECT_EQ(source->made, 2);
}

TEST(SnapshotList, AnswersNullForAnEmptyEntry) {
    List list;
    list.Fill(std::make_shared<CountingSource>(3, 1));
    ASSERT_TRUE(list.Seek(List::First, 1));
    EXPECT_EQ(list.Data(), nullptr);
    ASSERT_TRUE(list.Seek(List::Current, 1));
    EXPECT_NE(list.Data(), nullptr);
}

TEST(SnapshotList, IsEmptyAfterDestroyAndMayBeFilledAgain) {
    List list;
    list.Fill(std::make_shared<CountingSource>(3));
    ASSERT_TRUE(list.Seek(List::Last, 0));
    list.Data();
    list.Destroy();
    EXPECT_EQ(list.Size(), 0);
    EXPECT_EQ(list.Data(), nullptr);
    list.Fill(std::make_shared<CountingSource>(1));
    ASSERT_TRUE(list.Seek(List::First, 0));
    EXPECT_EQ(list.Data()->Major(), 10);
}

TEST(SnapshotList, LetsItsSourceGoWithItsContent) {
    const auto source = std::make_shared<CountingSource>(3);
    List list;
    list.Fill(source);
    EXPECT_EQ(source.use_count(), 2);
    list.Create();
    EXPECT_EQ(source.use_count(), 1);
}

}  // namespace
}  // namespace epgset
