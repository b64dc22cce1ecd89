#include "set/guide/TextArchive.h"

#include <gtest/gtest.h>

#include <future>
#include <random>
#include <string>
#include <vector>

#include "set/guide/TextArchiveWriter.h"

namespace epgset {
namespace {

struct Archived {
    TextArchive archive;
    std::vector<TextArchive::Place> places;
};

Archived archived(const std::vector<std::string>& texts) {
    TextArchiveWriter writer;
    std::vector<TextArchive::Place> places;
    for (const std::string& text : texts)
        places.push_back(writer.add(text));
    return {writer.finish(), places};
}

/// Texts of all lengths, some of which take more than a block.
std::vector<std::string> manyTexts() {
    std::mt19937 random(7);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < 2000; ++i) {
        std::string& text = texts.emplace_back(i % 500 == 499 ? 60'000 : random() % 900, ' ');
        for (char& c : text)
            c = static_cast<char>('a' + random() % 26);
    }
    return texts;
}

TEST(TextArchive, GivesEachTextBack) {
    const std::vector<std::string> texts = manyTexts();
    const Archived kept = archived(texts);
    for (std::size_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(kept.archive.text(kept.places[i]), texts[i]) << i;
    for (std::size_t i = texts.size(); i-- > 0;)
        ASSERT_EQ(kept.archive.text(kept.places[i]), texts[i]) << "the other way round, " << i;
}

TEST(TextArchive, HoldsNothingAndEmptyTexts) {
    EXPECT_EQ(archived({}).archive.text({}), "");
    const Archived kept = archived({"", "a", "", std::string("\0", 1)});
    EXPECT_EQ(kept.archive.text(kept.places[0]), "");
    EXPECT_EQ(kept.archive.text(kept.places[1]), "a");
    EXPECT_EQ(kept.archive.text(kept.places[2]), "");
    EXPECT_EQ(kept.archive.text(kept.places[3]), std::string("\0", 1));
}

TEST(TextArchive, TakesAFractionOfWhatItsTextsDo) {
    std::vector<std::string> texts;
    std::size_t bytes = 0;
    for (int i = 0; i < 1000; ++i)
        bytes +=
            texts.emplace_back("Number " + std::to_string(i) + " tells what happened that evening.").size();
    EXPECT_LT(archived(texts).archive.bytes(), bytes / 3);
}

TEST(TextArchive, ATextOfAPoolIsKeptOnce) {
    const std::vector<std::string> texts = manyTexts();
    TextArchiveWriter once;
    TextArchiveWriter often;
    for (const std::string& text : texts)
        once.add(text);
    for (int time = 0; time < 5; ++time) {
        for (const std::string& text : texts)
            EXPECT_EQ(often.addOfPool(text).length, text.size());
    }
    const TextArchive archive = often.finish();
    EXPECT_EQ(archive.bytes(), once.finish().bytes());
}

TEST(TextArchive, AThreadThatReadsOfSeveralTakesNoneForAnother) {
    const Archived one = archived({"one"});
    const Archived other = archived({"two"});
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(one.archive.text(one.places[0]), "one");
        EXPECT_EQ(other.archive.text(other.places[0]), "two");
    }
    for (const char* text : {"ten", "six"}) {  // one after the other at the same place in memory
        const Archived kept = archived({text});
        EXPECT_EQ(kept.archive.text(kept.places[0]), text);
    }
}

TEST(TextArchive, ManyThreadsReadAtATime) {
    const std::vector<std::string> texts = manyTexts();
    const Archived kept = archived(texts);
    std::vector<std::future<int>> threads;
    for (std::size_t first = 0; first < 4; ++first) {
        threads.push_back(std::async(std::launch::async, [&, first] {
            int wrong = 0;
            for (std::size_t i = first; i < texts.size(); i += 7)
                wrong += kept.archive.text(kept.places[i]) == texts[i] ? 0 : 1;
            return wrong;
        }));
    }
    for (auto& thread : threads)
        EXPECT_EQ(thread.get(), 0);
}

}  // namespace
}  // namespace epgset
