// SPDX-License-Identifier: MIT
#include "makepsres/command_line.h"

#include <utility>

namespace gw::psres {

namespace {

CommandLine complaint(std::string text) {
    CommandLine line;
    line.task = CommandLine::Task::COMPLAIN;
    line.complaint = std::move(text);
    return line;
}

CommandLine only(CommandLine::Task task) {
    CommandLine line;
    line.task = task;
    return line;
}

}  // namespace

CommandLine parse_command_line(const std::vector<std::string>& arguments) {
    CommandLine line;
    bool options = true;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (!options || !argument->starts_with('-') || *argument == "-") {
            line.directories.push_back(*argument);
        } else if (*argument == "--") {
            options = false;
        } else if (*argument == "-q") {
            line.quiet = true;
        } else if (*argument == "-nr") {
            line.rescan = false;
        } else if (*argument == "-o") {
            if (++argument == arguments.end() || argument->empty()) return complaint("-o wants a file");
            line.output = *argument;
        } else if (*argument == "--help") {
            return only(CommandLine::Task::HELP);
        } else if (*argument == "--version") {
            return only(CommandLine::Task::VERSION);
        } else {
            return complaint("there is no option " + *argument);
        }
    }
    if (line.directories.empty()) line.directories.emplace_back(".");
    return line;
}

std::string usage() {
    return "Usage: makepsres [-q] [-nr] [-o FILE] [DIRECTORY]...\n";
}

std::string version() {
    return "makepsres (Glyph Warden) " MAKEPSRES_VERSION "\n";
}

}  // namespace gw::psres
