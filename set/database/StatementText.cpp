#include "set/database/StatementText.h"

namespace epgset {

std::size_t nextStatement(std::string_view sql) {
    constexpr std::string_view between = " \t\n\f\r;";
    for (std::size_t at = sql.find_first_not_of(between); at != std::string_view::npos;
         at = sql.find_first_not_of(between, at)) {
        const std::string_view rest = sql.substr(at);
        std::size_t end;
        if (rest.starts_with("--")) {
            end = sql.find('\n', at);
        } else if (rest.starts_with("/*")) {
            end = sql.find("*/", at + 2);
            if (end != std::string_view::npos) end += 2;
        } else {
            return at;
        }
        if (end == std::string_view::npos) break;
        at = end;
    }
    return sql.size();
}

}  // namespace epgset
