// Makes statements fail, for tests.
#pragma once

#include <string>
#include <string_view>

namespace epgset {

/// While it lives, of the statements whose SQL text contains `sql`, the `first`th operation from now on
/// (1 is the next) and the `times` - 1 after it fail. A failing compile leaves an empty handle, as a
/// failing compile does; a failing step answers false. Code that steps the SQLite handle itself is
/// reached through Compile only.
class DatabaseFault {
public:
    enum Operation { Compile, Step };

    DatabaseFault(Operation operation, std::string sql, int first = 1, int times = 1);
    ~DatabaseFault();
    DatabaseFault(const DatabaseFault&) = delete;
    DatabaseFault& operator=(const DatabaseFault&) = delete;

    /// Whether any lives now.
    static bool areSet();

    /// Whether a fault that lives now hits this operation, which counts as one.
    static bool hits(Operation operation, std::string_view sql);

private:
    Operation operation_;
    std::string sql_;
    int first_;
    int times_;
    int seen_ = 0;
};

}  // namespace epgset
