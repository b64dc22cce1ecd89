// How many programmes the table holds within its page limit, its indexes beside it.
#include <gmock/gmock.h>

#include <cstdio>

#include "set/demo/DemoGuide.h"
#include "tests/support/PluginTest.h"

namespace epgtest {
namespace {

/// The table filled from the demo guide, whose rows can be added again and again.
class TableRoom : public PluginTest {
protected:
    static constexpr int maximumPages = 5120;
    static constexpr int wantedRows = 95'000;

    TableRoom() {
        epgset::useGuide(epgset::demoGuide(startTime));
        plugin();
        guideRows_ = number("SELECT count(*) FROM myView");
    }

    static int number(const std::string& sql) { return std::stoi(table(sql).front().front()); }
    static int pages() { return number("PRAGMA page_count"); }
    static int rows() { return number("SELECT count(*) FROM myView"); }

    static bool run(const std::string& sql) {
        return sqlite3_exec(OpenPlugin::epgDBConnection->handle(), sql.c_str(), nullptr, nullptr, nullptr) ==
               SQLITE_OK;
    }

    /// Adds the demo guide's first rows once more; false when there is no room for them.
    bool addRows(int count) const {
        return run("INSERT INTO myView SELECT * FROM myView WHERE rowid<=" + std::to_string(count));
    }
    bool addGuide() const { return addRows(guideRows_); }

    void dropIndexes() const {
        for (const char* index :
             {"myViewEvent", "myViewSchedule", "myViewBooked", "myViewStub", "myViewChannel"})
            ASSERT_TRUE(run(std::string("DROP INDEX ") + index));
    }

    int guideRows_ = 0;
};

TEST_F(TableRoom, HoldsNinetyFiveThousandProgrammesOfTheDemoGuideAndTheirIndexes) {
    dropIndexes();
    const int bytesBefore = pages() * 4096;
    while (rows() < wantedRows)
        ASSERT_TRUE(addGuide()) << rows();
    const int tablePages = pages();
    std::printf("figure: a row of the demo guide takes %.1f bytes of the table (%d rows: %d bytes)\n",
                tablePages * 4096.0 / rows(), guideRows_, bytesBefore);

    OpenPlugin::m_createIndexes(OpenPlugin::epgDBConnection);
    EXPECT_EQ(number("SELECT count(*) FROM sqlite_master WHERE type='index'"), 5);
    EXPECT_GE(rows(), wantedRows);
    EXPECT_LE(pages(), maximumPages);
    std::printf("figure: %d rows of the demo guide: %d pages, %d with the indexes, of %d\n", rows(),
                tablePages, pages(), maximumPages);

    // As a fill does that follows another: the pages of the one before are free and not gone.
    dropIndexes();
    OpenPlugin::m_createIndexes(OpenPlugin::epgDBConnection);
    EXPECT_EQ(number("SELECT count(*) FROM sqlite_master WHERE type='index'"), 5);

    while (addGuide()) {
    }
    while (addRows(100)) {
    }
    EXPECT_GE(rows(), wantedRows);
    std::printf("figure: %d rows fit beside the indexes\n", rows());
}

}  // namespace
}  // namespace epgtest
