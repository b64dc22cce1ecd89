#include "set/log/LogFormat.h"

#include <fmt/args.h>
#include <fmt/printf.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string_view>

using Container::LogArgument;

namespace epgset {
namespace {

using ArgumentStore = fmt::dynamic_format_arg_store<fmt::printf_context>;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads the directives of a format one by one; the bounds of fmt's printf are not enough for formats
/// that come from outside (it honours "*", and any width).
class DirectiveReader {
public:
    explicit DirectiveReader(std::string_view format) : rest_(format) {}

    /// The conversion letter of the next directive that takes an argument; 0 at the end of the format.
    /// Nothing when the directive is not one that is formatted.
    std::optional<char> next() {
        for (;;) {
            const std::size_t percent = rest_.find('%');
            if (percent == std::string_view::npos) return '\0';
            rest_.remove_prefix(percent + 1);
            if (!skip('%')) return readDirective();
        }
    }

private:
    bool skip(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool skipNumber() {
        int value = 0;
        for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1)) {
            value = value * 10 + (rest_.front() - '0');
            if (value > maxLogFieldWidth) return false;
        }
        return true;
    }

    std::optional<char> readDirective() {
        while (!rest_.empty() && std::string_view("-+ 0#").find(rest_.front()) != std::string_view::npos)
            rest_.remove_prefix(1);
        if (!skipNumber()) return std::nullopt;
        if (skip('.') && !skipNumber()) return std::nullopt;

        std::string_view conversions = "diouxXcspeEfFgGaA";
        if (skip('h')) {
            skip('h');
            conversions = "diouxX";
        } else if (skip('l')) {
            skip('l');
            conversions = "diouxXeEfFgGaA";
        } else if (skip('j') || skip('z') || skip('t')) {
            conversions = "diouxX";
        }
        if (rest_.empty() || conversions.find(rest_.front()) == std::string_view::npos) return std::nullopt;
        const char conversion = rest_.front();
        rest_.remove_prefix(1);
        return conversion;
    }

    std::string_view rest_;
};

void addInteger(ArgumentStore& store, const LogArgument& argument) {
    if (argument.kind == LogArgument::Kind::Character) {
        store.push_back(static_cast<char>(argument.integer));
    } else if (argument.kind == LogArgument::Kind::Signed) {
        const auto value = static_cast<std::int64_t>(argument.integer);
        if (argument.bytes <= sizeof(int)) {
            store.push_back(static_cast<int>(value));
        } else {
            store.push_back(static_cast<long long>(value));
        }
    } else if (argument.bytes <= sizeof(int)) {
        store.push_back(static_cast<unsigned>(argument.integer));
    } else {
        store.push_back(static_cast<unsigned long long>(argument.integer));
    }
}

/// Adds the argument for one directive and answers whether it is of a kind that the directive prints.
bool addArgument(ArgumentStore& store, char conversion, const LogArgument& argument) {
    using Kind = LogArgument::Kind;
    switch (conversion) {
        case 's':
            if (argument.kind != Kind::Text) return false;
            // A view, since a precision would make fmt search a null text for its end.
            store.push_back(std::string_view(argument.text ? argument.text : "(null)"));
            return true;
        case 'p':
            if (argument.kind == Kind::Text) {
                store.push_back(static_cast<const void*>(argument.text));
                return true;
            }
            if (argument.kind != Kind::Pointer) return false;
            store.push_back(argument.pointer);
            return true;
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
        case 'c':
            if (argument.kind != Kind::Signed && argument.kind != Kind::Unsigned &&
                argument.kind != Kind::Character)
                return false;
            addInteger(store, argument);
            return true;
        default:
            if (argument.kind != Kind::Floating) return false;
            store.push_back(argument.floating);
            return true;
    }
}

/// Collects the arguments of all directives and answers whether the format can be formatted.
bool matchArguments(ArgumentStore& store, std::string_view format, const LogArgument* arguments,
                    std::size_t count) {
    DirectiveReader reader(format);
    for (std::size_t used = 0;; ++used) {
        const std::optional<char> conversion = reader.next();
        if (!conversion) return false;
        if (*conversion == '\0') return true;
        if (used == count || !addArgument(store, *conversion, arguments[used])) return false;
    }
}

}  // namespace

std::string formatLogMessage(const char* format, const LogArgument* arguments, std::size_t count) {
    if (!format) return "(null)";
    const std::string_view text = format;
    if (text.find('%') == std::string_view::npos) return std::string(text);
    try {
        ArgumentStore store;
        store.reserve(count, 0);
        if (matchArguments(store, text, arguments, count))
            return fmt::vsprintf(text, fmt::printf_args(store));
    } catch (const fmt::format_error&) {
        // A combination that fmt does not know: the format is shown instead, as promised.
    }
    return std::string(text);
}

}  // namespace epgset
