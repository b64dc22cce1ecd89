// Bounds the SQL functions whose time grows with the product of their arguments.
#pragma once

#include <sqlite3.h>

namespace epgset {

/// Puts a bound before instr, replace, trim, ltrim, rtrim, json_patch, printf and format, and answers
/// SQLite's result code. One call of them on values within the length limit may take minutes, during
/// which SQLite looks at no deadline. What is within the bound is answered by SQLite's own function; a
/// call beyond it fails with "string or blob too big", and one after the statement's time as
/// interrupted.
int boundExpensiveFunctions(sqlite3* database);

}  // namespace epgset
