#include "set/epghost/TimeOption.h"

#include <chrono>
#include <limits>

namespace epgset {
namespace {

/// Takes a text apart from its front. Once something expected is missing, the reader has failed.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool failed() const { return failed_; }
    bool atEnd() const { return rest_.empty(); }

    /// Takes `character` when it is next.
    bool take(char character) {
        if (!rest_.starts_with(character)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void expect(char character) { failed_ = !take(character) || failed_; }

    /// A number of exactly `digits` digits that is at most `maximum`.
    int number(std::size_t digits, int maximum) {
        if (rest_.size() < digits) failed_ = true;
        int value = 0;
        for (std::size_t at = 0; at < digits && !failed_; ++at) {
            const char digit = rest_[at];
            if (digit < '0' || digit > '9') failed_ = true;
            value = value * 10 + (digit - '0');
        }
        if (failed_ || value > maximum) {
            failed_ = true;
            return 0;
        }
        rest_.remove_prefix(digits);
        return value;
    }

private:
    std::string_view rest_;
    bool failed_ = false;
};

/// The offset at the end of a time, in seconds east of UTC.
std::int64_t readOffset(Reader& reader) {
    if (reader.atEnd() || reader.take('Z')) return 0;
    const bool west = reader.take('-');
    if (!west) reader.expect('+');
    std::int64_t seconds = std::int64_t{reader.number(2, 23)} * 3600;
    if (!reader.atEnd()) {
        reader.take(':');
        seconds += std::int64_t{reader.number(2, 59)} * 60;
    }
    return west ? -seconds : seconds;
}

}  // namespace

std::optional<std::int64_t> parseTimeOption(std::string_view text) {
    using namespace std::chrono;
    Reader reader(text);
    const year y(reader.number(4, 9999));
    reader.expect('-');
    const month m(static_cast<unsigned>(reader.number(2, 12)));
    reader.expect('-');
    const day d(static_cast<unsigned>(reader.number(2, 31)));
    reader.expect('T');
    std::int64_t ofDay = std::int64_t{reader.number(2, 23)} * 3600;
    reader.expect(':');
    ofDay += std::int64_t{reader.number(2, 59)} * 60;
    if (reader.take(':')) ofDay += reader.number(2, 59);
    const std::int64_t offset = readOffset(reader);
    const year_month_day date(y, m, d);
    if (reader.failed() || !reader.atEnd() || !date.ok()) return std::nullopt;

    const std::int64_t time = sys_days(date).time_since_epoch() / seconds(1) + ofDay - offset;
    if (time < 0 || time > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return time;
}

}  // namespace epgset
