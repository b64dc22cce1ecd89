#include "tests/set/recorder/RecorderFixture.h"

namespace epgset {

using test::StreamServer;

::testing::AssertionResult holdsWhatWasSent(const std::filesystem::path& file,
                                            const std::vector<StreamServer::Run>& runs) {
    const std::string content = contentOf(file);
    std::size_t at = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::string bytes = StreamServer::bytesOf(runs[i]);
        const std::size_t part = std::min(bytes.size(), content.size() - at);
        if (content.compare(at, part, bytes, 0, part) != 0)
            return ::testing::AssertionFailure() << "the bytes of connection " << i << " are not at " << at;
        at += part;
        if (part < bytes.size() && i + 1 < runs.size())
            return ::testing::AssertionFailure() << bytes.size() - part << " bytes of connection " << i
                                                 << " of " << runs.size() << " are missing";
    }
    if (at < content.size())
        return ::testing::AssertionFailure() << content.size() - at << " bytes were never sent";
    return ::testing::AssertionSuccess();
}

}  // namespace epgset
