// What a set finds that was killed while it recorded.

#include "set/recorder/NoteFile.h"
#include "set/recorder/Recorder.h"
#include "tests/set/recorder/RecorderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RecorderRepairTest : public RecorderTest {
protected:
    /// Leaves the files of a recording as they are while it runs.
    void leaveBehind(unsigned long uid, const std::string& bytes) {
        std::filesystem::create_directories(settings_.folder);
        RecordingNote left;
        left.scheduleUid = uid;
        left.title = "Title";
        left.start = evening;
        left.file = stream(uid).filename();
        write(note(uid), noteText(left));
        write(note(uid).string() + NoteFile::spareExtension, std::string(3000, '\0'));
        write(note(uid).string() + NoteFile::replacementExtension, "{");
        write(stream(uid), bytes);
    }

    static void write(const std::filesystem::path& file, const std::string& content) {
        std::ofstream(file, std::ios::binary) << content;
    }
};

TEST_F(RecorderRepairTest, TellsThatARecordingWasInterrupted) {
    leaveBehind(17, std::string(1234, 'x'));
    recorder();
    const Note told(note(17));
    EXPECT_EQ(told.state(), "interrupted");
    EXPECT_EQ(told.reason(), "the set went down");
    EXPECT_EQ(told.number("bytes"), 1234U);
    EXPECT_EQ(told.text("title"), "Title");
    EXPECT_EQ(told.text("start"), "2026-08-23T20:15:00+02:00");
    EXPECT_FALSE(told.text("end").empty());
    EXPECT_THAT(files(), ElementsAre(note(17).filename(), stream(17).filename()));
    EXPECT_THAT(logged(Container::Logger::Warning), HasSubstr(stream(17).string() + " was interrupted"));
}

TEST_F(RecorderRepairTest, GoesOnInASecondFile) {
    leaveBehind(17, "what was");
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    const auto second = settings_.folder / "2026-08-23 20-15 News Title 17 2.ts";
    ASSERT_TRUE(eventually(
        [&] { return std::filesystem::exists(second) && std::filesystem::file_size(second) > 0; }));
    EXPECT_EQ(contentOf(stream(17)), "what was");
    EXPECT_EQ(Note(note(17)).state(), "interrupted");
}

TEST_F(RecorderRepairTest, TellsThatTheFileIsGone) {
    leaveBehind(17, "");
    std::filesystem::remove(stream(17));
    recorder();
    EXPECT_EQ(Note(note(17)).reason(), "the set went down, and the file is gone");
    EXPECT_EQ(Note(note(17)).number("bytes"), 0U);
}

TEST_F(RecorderRepairTest, LeavesARecordingOfAnotherSetAlone) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(hasBytes(17));
    const Recorder other(settings_, {});
    EXPECT_EQ(Note(note(17)).state(), "recording");
    recorder().end(17, RecordingEnd::Ended);
    ASSERT_TRUE(reaches(17, "ended"));
}

TEST_F(RecorderRepairTest, LeavesOtherFilesAlone) {
    std::filesystem::create_directories(settings_.folder / "folder.json");
    const std::vector<std::string> contents = {"",
                                               "{",
                                               "[]",
                                               "null",
                                               R"({"state":"recording"})",
                                               R"({"state":7,"schedule_id":"a"})",
                                               R"({"state":"ended","schedule_id":"sch_id_1"})"};
    for (std::size_t i = 0; i < contents.size(); ++i)
        write(settings_.folder / (std::to_string(i) + ".json"), contents[i]);
    std::filesystem::create_symlink("nowhere", settings_.folder / "link.json");
    recorder();
    for (std::size_t i = 0; i < contents.size(); ++i)
        EXPECT_EQ(contentOf(settings_.folder / (std::to_string(i) + ".json")), contents[i]);
    EXPECT_EQ(files().size(), contents.size() + 2);
}

}  // namespace
}  // namespace epgset
