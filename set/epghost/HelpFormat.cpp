#include "set/epghost/HelpFormat.h"

#include <sstream>
#include <string_view>

namespace epgset {
namespace {

constexpr std::size_t lineWidth = 80;
constexpr std::size_t textColumn = 26;

/// Words in lines of at most lineWidth; all but the first are indented, which begins at column `at`.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t at) {
    std::istringstream words(text);
    std::string result;
    bool first = true;
    for (std::string word; words >> word; first = false) {
        if (!first && at + 1 + word.size() > lineWidth) {
            result.append("\n").append(indent, ' ');
            at = indent;
        } else if (!first) {
            result += ' ';
            ++at;
        }
        result += word;
        at += word.size();
    }
    return result + '\n';
}

std::string inColumns(const std::string& name, const std::string& text) {
    std::string line = "  " + name;
    if (line.size() + 2 > textColumn) {
        line += '\n';
        line.append(textColumn, ' ');
    } else {
        line.append(textColumn - line.size(), ' ');
    }
    return line + wrapped(text, textColumn, textColumn);
}

}  // namespace

std::string HelpFormat::make_description(const CLI::App* app) const {
    return wrapped(app->get_description(), 0, 0);
}

std::string HelpFormat::make_option(const CLI::Option* option, bool /*positional*/) const {
    std::string name = "--" + option->get_lnames().at(0);
    if (option->get_items_expected_max() > 0) name += ' ' + option->get_type_name();
    std::string text = option->get_description();
    if (!option->get_default_str().empty()) text += " [" + option->get_default_str() + "]";
    return inColumns(name, text);
}

std::string HelpFormat::make_subcommand(const CLI::App* command) const {
    return inColumns(command->get_name(), command->get_description());
}

}  // namespace epgset
