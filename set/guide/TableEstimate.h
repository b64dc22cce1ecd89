// How much room a guide takes in the plug-in's table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "set/guide/Guide.h"

namespace epgset {

/// How many bytes SQLite stores a row of a programme of `channel` in, at most. `title` decides, the other
/// columns are the channel's, identifiers and times.
std::size_t programmeRowBytes(const Channel& channel, std::string_view title);

/// The same for the row of a channel that has no programme.
std::size_t stubRowBytes(const Channel& channel);

/// Counts the pages of an SQLite table into which rows are inserted one after the other, with the page size
/// that SQLite has by itself (4096 bytes). Never fewer than the table takes.
class TableEstimate {
public:
    /// Adds a row of that many bytes.
    void addRow(std::size_t bytes);

    /// Pages of the whole database.
    std::size_t pages() const;

private:
    std::size_t rows_ = 0;
    std::size_t leaves_ = 0;
    std::size_t overflowPages_ = 0;
    std::size_t freeBytes_ = 0;  ///< of the newest leaf
};

}  // namespace epgset
