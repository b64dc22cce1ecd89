// The web server's URI parsers: a path and a query split into records.
//
// Both decode percent escapes; in a query "+" is a blank. Empty path segments do not count.
#pragma once

#include <cstdint>

#include "host/Export.h"

extern "C" {

/// A path split at "/". Read only; freed with TARNO_rstr_uri_delete_path.
struct TARNO_rstr_uri_path_st {
    std::int32_t count;  ///< number of parts
    char** parts;        ///< `count` texts; the first is the segment after the mount point
};

/// A query split into pairs, in their order in the query. Read only; freed with
/// TARNO_rstr_uri_delete_query.
struct TARNO_rstr_uri_query_st {
    std::int32_t count;  ///< number of pairs
    char** names;        ///< `count` names; one given twice stands here twice
    char** values;       ///< `count` values; empty for a name without "="
};

/// The record of a path, or null when it cannot be made (a null path, a NUL inside, encoded or not, no
/// memory). An empty path gives a record of no parts. A negative length means up to the terminating NUL.
HOST_API TARNO_rstr_uri_path_st* TARNO_rstr_uri_parse_path(const char* path, int length);

/// The record of a query, or null when it cannot be made (as for a path). An empty query gives a record
/// of no pairs.
HOST_API TARNO_rstr_uri_query_st* TARNO_rstr_uri_parse_query(const char* query, int length);

/// Frees a record; null is accepted.
HOST_API void TARNO_rstr_uri_delete_path(TARNO_rstr_uri_path_st* record);
HOST_API void TARNO_rstr_uri_delete_query(TARNO_rstr_uri_query_st* record);
}
