// Lets SQLite's step answer a code of the test's choice.
#pragma once

#include <string>

namespace epgtest {

/// While it lives, sqlite3_step of each statement whose text contains `sql` runs nothing and answers
/// `code`. One at a time. A program that uses it compiles StepAnswer.cpp in.
class StepAnswer {
public:
    StepAnswer(std::string sql, int code);
    ~StepAnswer();
    StepAnswer(const StepAnswer&) = delete;
    StepAnswer& operator=(const StepAnswer&) = delete;
};

}  // namespace epgtest
