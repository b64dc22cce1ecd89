#include "set/epghost/ManPage.h"

#include <CLI/CLI.hpp>
#include <ostream>
#include <string>
#include <string_view>

namespace epgset {
namespace {

/// Text as roff prints it unchanged, hyphens for copying included.
std::string roff(std::string_view text) {
    std::string result;
    if (text.starts_with('.') || text.starts_with('\'')) result = "\\&";
    for (const char c : text) {
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
    }
    return result;
}

/// A sentence of a phrase.
std::string sentence(const std::string& phrase) {
    return phrase.empty() || phrase.ends_with('.') ? phrase : phrase + '.';
}

void writeOptions(const CLI::App& app, std::ostream& out) {
    for (const CLI::Option* const option : app.get_options()) {
        out << ".TP\n\\fB" << roff("--" + option->get_lnames().at(0)) << "\\fR";
        if (option->get_items_expected_max() > 0) out << " \\fI" << roff(option->get_type_name()) << "\\fR";
        out << '\n' << roff(sentence(option->get_description()));
        const std::string standard = option->get_default_str();
        if (!standard.empty()) out << " Default: " << roff(standard) << '.';
        out << '\n';
    }
}

void writeCommands(const CLI::App& app, std::ostream& out) {
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_group().empty()) continue;
        out << ".SS epghost " << roff(command->get_name()) << '\n'
            << roff(sentence(command->get_description())) << '\n';
        writeOptions(*command, out);
    }
}

constexpr std::string_view afterOptions = R"(.SH CONFIGURATION
The file that \fB\-\-config\fR names is TOML: a line \fIOPTION\fR = \fIVALUE\fR for each option, by its name without
the dashes. Numbers stand as they are, all else in quotes;
.B guide
may be a list. Relative paths count from the working folder, as on the command line.
.PP
.EX
guide = ["/var/lib/guides/one.xml.gz", "/var/lib/guides/two.xml"]
lineup = "/etc/epghost\-lineup.toml"
listen = "0.0.0.0"
port = 8080
.EE
.SH SIGNALS
SIGTERM and SIGINT stop the set. SIGHUP has it read the guides and the line-up again, which it also does when their
files change; where one of them is bad, that is logged and the old ones stay in use. The configuration file is read at
the start alone.
.SH "EXIT STATUS"
0 after a stop that was asked for, and when a command did what it is for; 2 when an option, a file, a folder or the
address is of no use, which one line on standard error tells.
.SH ENVIRONMENT
.TP
.B TZ
The zone of repeating entries and of \fB\-\-zone local\fR.
.TP
.B NOTIFY_SOCKET
Where the set tells the service manager that it is ready, reads its guides again or stops.
)";

}  // namespace

void writeManPage(const CLI::App& app, std::ostream& out) {
    out << ".TH EPGHOST 1 \"\" \"epghost " EPGHOST_VERSION
           "\" \"User Commands\"\n"
           ".SH NAME\nepghost \\- a programme guide service with a television around it\n"
           ".SH SYNOPSIS\n.B epghost\n[\\fIOPTION\\fR]...\n.br\n.B epghost\n\\fICOMMAND\\fR "
           "[\\fIOPTION\\fR]...\n"
           ".SH DESCRIPTION\n"
        << roff(app.get_description())
        << " Without a command it reads its guides, prints the address on which it listens, and serves until "
           "a signal "
           "stops it.\n.SH OPTIONS\n";
    writeOptions(app, out);
    out << ".SH COMMANDS\n";
    writeCommands(app, out);
    out << afterOptions;
}

}  // namespace epgset
