// Reading a schedule request into a record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

using Field = char* ws_epg_schedule::*;

const std::map<std::string, Field> fields = {
    {"id", &ws_epg_schedule::id},
    {"name", &ws_epg_schedule::name},
    {"status", &ws_epg_schedule::status},
    {"channel_num", &ws_epg_schedule::channel_num},
    {"channel_name", &ws_epg_schedule::channel_name},
    {"antenna", &ws_epg_schedule::antenna},
    {"synopsis", &ws_epg_schedule::synopsis},
    {"start", &ws_epg_schedule::start},
    {"end", &ws_epg_schedule::end},
    {"repeat", &ws_epg_schedule::repeat},
    {"source_path", &ws_epg_schedule::source_path},
    {"storage_path", &ws_epg_schedule::storage_path},
    {"recent_record_path", &ws_epg_schedule::recent_record_path},
    {"method", &ws_epg_schedule::method},
    {"program_id", &ws_epg_schedule::program_id},
};

class RequestParser : public ServiceTest {
protected:
    static ScheduleRecord record(const std::string& text) {
        Body body(text);
        return ScheduleRecord(t_prase_schedule_data(body.data(), body.length()));
    }

    /// The fields that a body fills, and "force" where it is not 0; "error" alone for a body without a
    /// record.
    static std::map<std::string, std::string> parsed(const std::string& text) {
        const ScheduleRecord made = record(text);
        if (made == nullptr) return {{"error", ""}};
        std::map<std::string, std::string> filled;
        for (const auto& [name, field] : fields)
            if (made.get()->*field != nullptr) filled[name] = made.get()->*field;
        if (made->force != 0) filled["force"] = std::to_string(made->force);
        return filled;
    }

    /// Parses a body that is refused and answers the one line that is logged, at error level.
    std::string refusal(const std::string& text) {
        log.clear();
        EXPECT_EQ(record(text), nullptr) << text;
        const auto lines = logged();
        if (lines.size() != 1 || lines[0].first != Logger::Error) return "(not one error)";
        return lines[0].second;
    }

    static std::string noColon(const std::string& rest) { return "json parsing error. no colon. : " + rest; }
    static std::string noComma(const std::string& rest) {
        return "json parsing error. no comma or curly bracket. : " + rest;
    }
};

TEST_F(RequestParser, ReadsPairs) {
    EXPECT_THAT(parsed(R"({"status":"VIEW","start":"2013-05-06T10:00:00+09:00"})"),
                UnorderedElementsAre(Pair("status", "VIEW"), Pair("start", "2013-05-06T10:00:00+09:00")));
    EXPECT_THAT(parsed("{status:VIEW, repeat:ONCE}"),
                UnorderedElementsAre(Pair("status", "VIEW"), Pair("repeat", "ONCE")));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(RequestParser, FillsAFieldByEachKey) {
    for (const auto& [name, field] : fields) {
        if (name == "method" || name == "program_id") continue;
        EXPECT_THAT(parsed(R"({")" + name + R"(":"a text"})"), ElementsAre(Pair(name, "a text")));
    }
    EXPECT_THAT(parsed(R"({"type":"VIEW"})"), ElementsAre(Pair("status", "VIEW")));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(RequestParser, TakesTheLaterOfTypeAndStatus) {
    EXPECT_THAT(parsed(R"({"type":"VIEW","status":"RECORD"})"), ElementsAre(Pair("status", "RECORD")));
    EXPECT_THAT(parsed(R"({"status":"RECORD","type":"VIEW"})"), ElementsAre(Pair("status", "VIEW")));
    EXPECT_THAT(parsed(R"({"name":"one","name":"two"})"), ElementsAre(Pair("name", "two")));
}

TEST_F(RequestParser, LogsAndIgnoresUnknownKeys) {
    for (const char* key :
         {"method", "program_id", "Name", "STATUS", "force ", "nam", "names", "", "thumb_uri"}) {
        log.clear();
        EXPECT_THAT(parsed(std::string(R"({")") + key + R"(":"x"})"), IsEmpty()) << key;
        EXPECT_THAT(logged(), ElementsAre(Pair(_, std::string(R"(Unknown items - ")") + key + R"(":"x")")));
        ASSERT_FALSE(log.records().empty());
        EXPECT_EQ(log.records()[0].format, R"(Unknown items - "%s":"%s")");
    }
}

TEST_F(RequestParser, ReadsForceIgnoringCase) {
    const struct {
        const char* value;
        int force;
    } examples[] = {{"true", 1},  {"TRUE", 1},          {"True", 1},          {"false", 0},
                    {"FALSE", 0}, {"check_overlap", 2}, {"CHECK_OVERLAP", 2}, {"Check_Overlap", 2}};
    for (const auto& [value, force] : examples) {
        const auto made = record(std::string(R"({"force":")") + value + R"("})");
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->force, force) << value;
    }
    EXPECT_EQ(record("{force:true}")->force, 1);
    EXPECT_EQ(record(R"({"name":"x"})")->force, 0) << "the default";
    EXPECT_EQ(record(R"({"force":"true","force":"false"})")->force, 0) << "the later one counts";
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(RequestParser, OnlyLogsAnUnknownForce) {
    EXPECT_THAT(parsed(R"({"force":"maybe"})"), IsEmpty());
    EXPECT_THAT(parsed(R"({"force":"check_overlap","force":"1"})"), ElementsAre(Pair("force", "2")));
    EXPECT_THAT(parsed(R"({"force":""})"), IsEmpty());
    EXPECT_THAT(logged(), ElementsAre(Pair(_, R"(Unknown value - "force"(known):"maybe"(unknown))"),
                                      Pair(_, R"(Unknown value - "force"(known):"1"(unknown))"),
                                      Pair(_, R"(Unknown value - "force"(known):""(unknown))")));
    ASSERT_FALSE(log.records().empty());
    EXPECT_EQ(log.records()[0].format, R"(Unknown value - "%s"(known):"%s"(unknown))");
}

TEST_F(RequestParser, SkipsWhiteSpaceAroundKeysAndValues) {
    EXPECT_THAT(parsed(R"({"status" : "VIEW"})"), ElementsAre(Pair("status", "VIEW")));
    EXPECT_THAT(
        parsed(" \r\n\t{ \r\n\t\"name\" \r\n\t: \r\n\t\"x\" \r\n\t, \r\n\t\"antenna\":\"AIR\"\t}\r\n "),
        UnorderedElementsAre(Pair("name", "x"), Pair("antenna", "AIR")));
    EXPECT_THAT(parsed("{\n  name: x,\n  antenna: AIR}\n"),
                UnorderedElementsAre(Pair("name", "x"), Pair("antenna", "AIR")));
}

TEST_F(RequestParser, KnowsNoOtherWhiteSpace) {
    EXPECT_EQ(refusal("{\"name\"\v:\"x\"}"), noColon("\v:\"x\"}"));
    EXPECT_EQ(refusal("{\"name\":\"x\"\f}"), noComma("\f}"));
}

TEST_F(RequestParser, KeepsBlanksBehindAnUnquotedKeyOrValue) {
    EXPECT_THAT(parsed("{name : x}"), IsEmpty());
    EXPECT_THAT(parsed("{force:true }"), IsEmpty());
    EXPECT_THAT(parsed("{name:x }"), ElementsAre(Pair("name", "x ")));
    EXPECT_THAT(parsed("{name:two words , antenna:AIR\n}"),
                UnorderedElementsAre(Pair("name", "two words "), Pair("antenna", "AIR\n")));
    EXPECT_THAT(logged(), ElementsAre(Pair(_, R"(Unknown items - "name ":"x")"),
                                      Pair(_, R"(Unknown value - "force"(known):"true "(unknown))")));
}

TEST_F(RequestParser, EndsAnUnquotedValueAtTheDelimiterThatItThenOverwrites) {
    EXPECT_THAT(parsed("{name:x,antenna:AIR}"),
                UnorderedElementsAre(Pair("name", "x"), Pair("antenna", "AIR")));
    EXPECT_THAT(parsed("{name:,antenna:}"), UnorderedElementsAre(Pair("name", ""), Pair("antenna", "")));
    EXPECT_THAT(parsed("{name:a\"b:c}"), ElementsAre(Pair("name", "a\"b:c")));
}

TEST_F(RequestParser, MixesQuotedAndUnquoted) {
    EXPECT_THAT(parsed(R"({"name":x,antenna:"AIR"})"),
                UnorderedElementsAre(Pair("name", "x"), Pair("antenna", "AIR")));
}

TEST_F(RequestParser, KeepsDelimitersInsideQuotes) {
    EXPECT_THAT(parsed(R"({"name":"a, b: {c}","antenna":" AIR "})"),
                UnorderedElementsAre(Pair("name", "a, b: {c}"), Pair("antenna", " AIR ")));
    EXPECT_THAT(parsed(R"({"a:b,c}":"x","name":""})"), ElementsAre(Pair("name", "")));
}

TEST_F(RequestParser, KnowsNoEscapes) {
    EXPECT_THAT(parsed(R"({"name":"a\nb\u0041"})"), ElementsAre(Pair("name", R"(a\nb\u0041)")));
    EXPECT_EQ(refusal(R"({"name":"a\"b"})"), noComma(R"(b"})"));
}

TEST_F(RequestParser, TakesNumbersAndLiteralsAsTexts) {
    EXPECT_THAT(parsed(R"({"channel_num":7,"name":null,"synopsis":true,"force":true})"),
                UnorderedElementsAre(Pair("channel_num", "7"), Pair("name", "null"), Pair("synopsis", "true"),
                                     Pair("force", "1")));
}

TEST_F(RequestParser, DoesNotKnowObjectsAndListsInside) {
    EXPECT_EQ(refusal(R"({"name":{"x":"y"}})"), noColon(""));
    EXPECT_EQ(refusal(R"({"name":["a","b"]})"), noColon("]}"));
    EXPECT_THAT(parsed(R"({"name":[1]})"), ElementsAre(Pair("name", "[1]")));
}

TEST_F(RequestParser, MakesAnEmptyRecordOfWhatHoldsNoPairs) {
    for (const char* body : {"{", "{ \r\n\t", "no JSON", " ", "\"name\":\"x\"", "]"})
        EXPECT_THAT(parsed(body), IsEmpty()) << body;
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(RequestParser, SkipsWhatStandsBeforeTheBracket) {
    EXPECT_THAT(parsed(R"(junk "name":"no" {"name":"x"})"), ElementsAre(Pair("name", "x")));
}

TEST_F(RequestParser, RefusesAnEmptyObject) {
    EXPECT_EQ(refusal("{}"), noColon(""));
    EXPECT_EQ(refusal("{ }"), noColon(""));
}

TEST_F(RequestParser, RefusesAKeyWithoutColon) {
    EXPECT_EQ(refusal(R"({"name""x"})"), noColon(R"("x"})"));
    EXPECT_EQ(refusal(R"({"name"})"), noColon("}"));
    EXPECT_EQ(refusal(R"({"name" "x"})"), noColon(R"("x"})"));
    EXPECT_EQ(refusal(R"({"name)"), noColon(""));
    EXPECT_EQ(refusal("{name}"), noColon(""));
    EXPECT_EQ(refusal(R"({"name":"x",})"), noColon(""));
    ASSERT_FALSE(log.records().empty());
    EXPECT_EQ(log.records()[0].format, "json parsing error. no colon. : %s");
}

TEST_F(RequestParser, RefusesAValueWithoutDelimiter) {
    EXPECT_EQ(refusal(R"({"name":"x" "y":"z"})"), noComma(R"("y":"z"})"));
    EXPECT_EQ(refusal(R"({"name":"x")"), noComma(""));
    EXPECT_EQ(refusal(R"({"name":"x)"), noComma(""));
    EXPECT_EQ(refusal(R"({"name":)"), noComma(""));
    EXPECT_EQ(refusal("{name:x"), noComma(""));
    EXPECT_EQ(refusal(R"({"name":"x"])"), noComma("]"));
    ASSERT_FALSE(log.records().empty());
    EXPECT_EQ(log.records()[0].format, "json parsing error. no comma or curly bracket. : %s");
}

TEST_F(RequestParser, ReadsOnBehindTheClosingBracket) {
    EXPECT_THAT(parsed(R"({"name":"x"} "antenna":"AIR"})"),
                UnorderedElementsAre(Pair("name", "x"), Pair("antenna", "AIR")));
    EXPECT_THAT(logged(), IsEmpty());
    EXPECT_THAT(parsed(R"({"name":"x"}{"antenna":"AIR"})"), ElementsAre(Pair("name", "x")));
    EXPECT_THAT(logged(), ElementsAre(Pair(_, R"(Unknown items - "{"antenna"":"AIR")")));
    EXPECT_EQ(refusal(R"({"name":"x"} and so on)"), noColon(""));
    EXPECT_EQ(refusal(R"({"name":"x"}})"), noColon(""));
}

TEST_F(RequestParser, AcceptsABodyThatStopsBehindADelimiter) {
    const std::string body = R"({"name":"x","antenna":"AIR"})";
    for (std::size_t length = 1; length <= body.size(); ++length) {
        const std::string cut = body.substr(0, length);
        const bool complete = cut.ends_with('{') || cut == R"({"name":"x",)" || cut.ends_with('}');
        EXPECT_EQ(record(cut) != nullptr, complete) << cut;
    }
}

TEST_F(RequestParser, NeedsABody) {
    char body[] = R"({"name":"x"})";
    EXPECT_EQ(t_prase_schedule_data(nullptr, 5), nullptr);
    EXPECT_EQ(t_prase_schedule_data(body, 0), nullptr);
    EXPECT_EQ(t_prase_schedule_data(body, -1), nullptr);
    EXPECT_STREQ(body, R"({"name":"x"})") << "is left as it was";
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(RequestParser, EndsTheBodyAtItsNul) {
    using namespace std::string_literals;
    EXPECT_THAT(parsed("{\"name\":\"x\",\0\"antenna\":\"AIR\"}"s), ElementsAre(Pair("name", "x")));
    char body[] = R"({"name":"x"})";
    const ScheduleRecord made(t_prase_schedule_data(body, 1));
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->name, "x") << "the length says only whether there is a body";
}

TEST_F(RequestParser, CopiesTheTexts) {
    Body body(R"({"name":"x"})");
    const ScheduleRecord made(t_prase_schedule_data(body.data(), body.length()));
    ASSERT_NE(made, nullptr);
    std::fill_n(body.data(), body.length(), '?');
    EXPECT_STREQ(made->name, "x");
}

TEST_F(RequestParser, ReadsALongBody) {
    const std::string longText(2'000'000, 'x');
    EXPECT_THAT(parsed(R"({"name":")" + longText + R"("})"), ElementsAre(Pair("name", longText)));
    EXPECT_EQ(record("{" + std::string(2'000'000, '"')), nullptr);
}

TEST_F(RequestParser, GivesARecordOrExactlyOneError) {
    using namespace std::string_literals;
    const std::string body = R"({"name" : "x", antenna:AIR, "force":"true"} )";
    for (std::size_t position = 0; position < body.size(); ++position) {
        for (const char character : "{}\":, \t\\\xFF"s + '\0') {
            std::string changed = body;
            changed[position] = character;
            log.clear();
            const bool refused = record(changed) == nullptr;
            EXPECT_EQ(log.messagesOf("Vexmoor/EpgSQLPluginVexmoorUtil", Logger::Error).size(),
                      refused ? 1U : 0U)
                << changed;
        }
    }
}

TEST_F(RequestParser, LacksOnlyTheFieldForWhichThereIsNoMemory) {
    int recordsFailed = 0;
    int fieldsMissing = 0;
    const int allocations = withEachAllocationFailing([&](int, const FailingAllocation&) {
        Body body(R"({"name":"x","status":"VIEW"})");
        const ScheduleRecord made(t_prase_schedule_data(body.data(), body.length()));
        if (made == nullptr)
            ++recordsFailed;
        else
            fieldsMissing += (made->name == nullptr ? 1 : 0) + (made->status == nullptr ? 1 : 0);
    });
    EXPECT_EQ(recordsFailed, 1) << "only without memory for the record itself is there none";
    EXPECT_EQ(fieldsMissing, 2) << "each field was missing once";
    EXPECT_EQ(allocations, 3);
}

}  // namespace
}  // namespace epgtest
