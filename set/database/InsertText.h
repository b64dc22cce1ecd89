// INSERTs of one table as one statement.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace epgset {

/// An INSERT of a row of texts, "INSERT INTO name values('one', 'two');", taken apart. The rows of a fill
/// come as thousands of such texts, and to compile each takes four times what it takes to run; with
/// parameters in place of the texts they are one statement.
class InsertText {
public:
    /// Longer statements, and rows of more columns, are not taken apart.
    static constexpr std::size_t longestStatement = 4096;
    static constexpr std::size_t mostColumns = 32;

    /// Nothing for any other statement, or when more follows.
    static std::optional<InsertText> of(std::string_view sql);

    /// The same statement with parameters.
    const std::string& withParameters() const { return withParameters_; }

    /// The row's texts, one after the other. To be taken once.
    std::string takeRow() { return std::move(row_); }

    /// Binds the texts to the statement's parameters and answers SQLite's result code. `row` is what
    /// takeRow() answered, and must stay as it is until the statement has been reset.
    int bind(sqlite3_stmt* statement, const std::string& row) const;

private:
    std::string withParameters_;
    std::string row_;
    std::array<std::uint16_t, mostColumns> ends_;  ///< where each text ends in the row
    std::size_t columns_ = 0;
};

}  // namespace epgset
