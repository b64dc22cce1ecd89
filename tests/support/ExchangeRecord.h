// A record of what was asked of a server and what it answered, for checks of all answers together.
#pragma once

#include <string>

#include "tests/support/HttpClient.h"

namespace epgset::test {

/// Appends the exchange to the file that the environment variable EPG_RECORD_EXCHANGES names, as one line of
/// JSON: `method`, `target`, `status`, `headers` (names in lower case) and `body`. Does nothing without the
/// variable. Several threads and processes may record to one file. Throws std::runtime_error where the file
/// cannot be written.
void recordExchange(const std::string& method, const std::string& target, const HttpAnswer& answer);

}  // namespace epgset::test
