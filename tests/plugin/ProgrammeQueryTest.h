// The programme queries over a small guide.
#pragma once

#include <cstdint>
#include <string>

#include "tests/plugin/QueryTest.h"

namespace epgtest {

/// Four programmes on three channels, and a channel without one.
class ProgrammeQueryTest : public QueryTest {
protected:
    static constexpr std::uint32_t midnight = 1'787'443'200;  ///< 2026-08-23T00:00:00Z
    static constexpr std::uint32_t oneOClock = midnight + 3600;
    static constexpr std::uint32_t twoOClock = midnight + 7200;

    ProgrammeQueryTest() {
        useGuide(true);
        plugin();
        log.clear();
    }

    /// Makes the guide, with or without the channel "News 24".
    static void useGuide(bool withNews) {
        TestGuide guide;
        if (withNews) {
            const auto news = guide.channel(Air, 7, 2, "News 24");
            guide.programme(news, midnight, oneOClock, "Morning", 1, "A quiet start")
                .programme(news, oneOClock, twoOClock, "Football", 2);
        }
        guide.programme(guide.channel(Air, 10, 0, "Sport"), midnight, oneOClock, "Football live", 1, "NONE");
        epgset::Channel films;
        films.id = "films";
        films.name = "Films";
        films.tvMode = Cable;
        films.major = 9;
        films.scrambled = true;
        guide.programme(guide.add(films), midnight, twoOClock, "Western", 1, "None");
        guide.channel(Satellite, 1, 0, "Silence");
        guide.use();
    }

    static Answer list(const std::string& query, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmListSqlQuery(TestQuery(query.c_str()), document, method,
                                                      OpenPlugin::epgDBConnection);
        });
    }
    static Answer listOfChannel(const char* channelId, const std::string& query = "",
                                const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmListForChnlSqlQuery(channelId, TestQuery(query.c_str()), document,
                                                             method, OpenPlugin::epgDBConnection);
        });
    }
    static Answer info(const char* programId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmInfoSqlQuery(programId, document, method,
                                                      OpenPlugin::epgDBConnection);
        });
    }
    static Answer detail(const char* programId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_getPrgmDetailQuery(programId, document, method, OpenPlugin::epgDBConnection);
        });
    }
    static int exists(const char* programId) {
        return OpenPlugin::m_checkForProgramInDB(programId, OpenPlugin::epgDBConnection);
    }

    /// Adds a row of a channel, named as the stub that the lists leave out.
    static void addStub(const std::string& channelId, const std::string& eventId) {
        table("INSERT INTO myView (ChannelId, EventId, ProgramName, ScheduleId) VALUES ('" + channelId +
              "', '" + eventId + "', 'channel_stub', '')");
    }
};

}  // namespace epgtest
