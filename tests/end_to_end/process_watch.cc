// SPDX-License-Identifier: MIT
#include "end_to_end/process_watch.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace gw::e2e {

namespace {

std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The name of the program comes before its state, in parentheses.
char state_in(const std::string& directory) {
    const std::string stat = contents(directory + "stat");
    const std::size_t end = stat.rfind(')');
    return end == std::string::npos || end + 2 >= stat.size() ? 'X' : stat[end + 2];
}

}  // namespace

char ProcessWatch::state() const {
    return state_in(directory_);
}

std::string ProcessWatch::children() const {
    const std::string pid = std::filesystem::path(directory_).parent_path().filename();
    std::istringstream all(contents(directory_ + "task/" + pid + "/children"));
    std::string living;
    for (std::string child; all >> child;) {
        // The program kills those that do not answer, and collects them when it starts the next.
        const char state = state_in("/proc/" + child + '/');
        if (state != 'X' && state != 'Z') living += (living.empty() ? "" : " ") + child;
    }
    return living;
}

bool ProcessWatch::has_ended() const {
    const char now = state();
    return now == 'X' || now == 'Z';
}

bool ProcessWatch::sleeps() const {
    const char now = state();
    return now == 'X' || now == 'Z' || (now == 'S' && children().empty());
}

long long ProcessWatch::turns() const {
    std::istringstream lines(contents(directory_ + "status"));
    long long sum = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("ctxt_switches:") != std::string::npos)
            sum += std::stoll(line.substr(line.find(':') + 1));
    }
    return sum;
}

std::string ProcessWatch::description() const {
    const std::string below = children();
    return std::string("state ") + state() + (below.empty() ? "" : ", children " + below) + ", " +
           std::to_string(turns()) + " turns";
}

}  // namespace gw::e2e
