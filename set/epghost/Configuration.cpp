#include "set/epghost/Configuration.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

namespace epgset {
namespace {

[[noreturn]] void fail(const std::string& file, const toml::source_region& place, std::string_view message) {
    throw StartError(fmt::format("{}:{}: {}", file, place.begin.line, message));
}

std::string readWhole(const std::string& file) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
        throw StartError(file + ": is a folder, not a configuration file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw StartError(file + ": cannot be opened: " + std::generic_category().message(errno));
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad()) throw StartError(file + ": cannot be read");
    return text;
}

toml::table parse(const std::string& file) {
    try {
        return toml::parse(readWhole(file), file);
    } catch (const toml::parse_error& error) {
        fail(file, error.source(), error.description());
    }
}

/// A value as the command line would write it; nothing for one of another type.
std::optional<std::string> textOf(const toml::node& value, OptionEntry::Form form) {
    if (form == OptionEntry::Form::Text) return value.value_exact<std::string>();
    const auto number = value.value_exact<std::int64_t>();
    return number ? std::optional(std::to_string(*number)) : std::nullopt;
}

class ValueReader {
public:
    ValueReader(const std::string& file, const OptionEntry& option) : file_(file), option_(option) {}

    std::vector<std::string> read(const toml::node& value) const {
        const toml::array* const list = value.as_array();
        if (list == nullptr || !option_.repeats) return {one(value)};
        std::vector<std::string> values;
        for (const toml::node& element : *list)
            values.push_back(one(element));
        return values;
    }

private:
    std::string one(const toml::node& value) const {
        const auto text = textOf(value, option_.form);
        if (!text) fail(file_, value.source(), fmt::format("{} must be {}", option_.name, kind()));
        if (text->find('\0') != std::string::npos) {
            fail(file_, value.source(), fmt::format("{} holds a NUL", option_.name));
        }
        return *text;
    }

    std::string_view kind() const {
        if (option_.form == OptionEntry::Form::Number) return "a number";
        return option_.repeats ? "a text or a list of texts" : "a text";
    }

    const std::string& file_;
    const OptionEntry& option_;
};

}  // namespace

std::vector<ConfiguredOption> readConfiguration(const std::string& file) {
    const toml::table root = parse(file);
    std::vector<ConfiguredOption> options;
    for (const auto& [key, value] : root) {
        const OptionEntry* const option = findOption(key.str());
        if (option == nullptr) fail(file, key.source(), fmt::format("unknown option: \"{}\"", key.str()));
        options.push_back(
            {option, ValueReader(file, *option).read(value), static_cast<int>(value.source().begin.line)});
    }
    std::ranges::sort(options, {}, &ConfiguredOption::line);
    return options;
}

}  // namespace epgset
