// SPDX-License-Identifier: MIT
//
// Puts the configured font path on the running X server, at login.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "core/failure.h"
#include "core/rights.h"
#include "fontpath/session_path.h"
#include "platform/host_paths.h"

#include "x_server.h"

namespace {

using namespace gw::session;

constexpr int USAGE_ERROR = 2;

constexpr const char* USAGE =
    "Usage: glyphward-session [OPTION]\n"
    "\n"
    "Puts the configured font path on the running X server. What cannot be put there is said on\n"
    "standard error, one line each.\n"
    "\n"
    "  --dry-run   only print the font path that the server would get, one element a line\n"
    "  --list      only print the configured font path, with what would be skipped; needs no display\n"
    "  --help      print this\n"
    "  --version   print the version\n";

void complain(const std::string& line) {
    std::fprintf(stderr, "glyphward-session: %s\n", printable(line).c_str());
}

void complain(const Remark& remark, const char* consequence = "") {
    complain(remark.what + ": " + remark.why + consequence);
}

/// Gets the failures of the font path store: what it could not read, or the server did not accept.
void complain_of(const gw::Failure& failure) {
    complain(failure.text());
}

void print(const std::string& element, const std::string& remark = "") {
    std::printf("%s%s\n", printable(element).c_str(), remark.c_str());
}

void print_all(const Elements& elements) {
    for (const std::string& element : elements) print(element);
}

/// A session may be started with the standard descriptors closed. Without this, a file that is opened later
/// would become standard input, output or error.
void open_standard_descriptors() {
    int fd = ::open("/dev/null", O_RDWR);
    while (fd >= 0 && fd <= STDERR_FILENO) fd = ::open("/dev/null", O_RDWR);
    if (fd >= 0) ::close(fd);
}

/// Without a home directory an ordinary user has no composed font path.
bool lacks_home() {
    return !gw::runs_as_superuser() && std::getenv("HOME") == nullptr;
}

int list(const Elements& configured) {
    const std::vector<std::string> reasons = reasons_to_skip(configured);
    for (std::size_t i = 0; i < configured.size(); ++i)
        print(configured[i], reasons[i].empty() ? "" : "\t(" + reasons[i] + ')');
    return EXIT_SUCCESS;
}

void report(const Plan& plan) {
    for (const Remark& remark : plan.skipped) complain(remark);
    for (const Remark& remark : plan.dropped) complain(remark, "; dropped from the path of the X server");
}

/// A directory that looked usable but was refused by the server is a failure. A font server is not: it may be
/// down.
bool is_failure(const Plan& plan, const std::string& refused) {
    const auto end = plan.configured.end();
    return refused.starts_with('/') && std::find(plan.configured.begin(), end, refused) != end;
}

int set(const XServer& server, const Plan& plan, const Elements& current) {
    if (plan.path.empty()) return EXIT_SUCCESS;  // no element is usable
    const Outcome outcome = put(plan.path, current, server.host(),
                                [&](const Elements& path) { return server.set_font_path(path); });
    int status = outcome.path.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
    for (const std::string& element : outcome.refused) {
        complain(element + ": the X server refuses it");
        if (is_failure(plan, element)) status = EXIT_FAILURE;
    }
    return status;
}

int run(bool dry, const Configuration& configured) {
    const XServer server;
    if (!server.is_open()) {
        complain("cannot open display" + display_in_words());
        return EXIT_FAILURE;
    }
    const Elements current = server.font_path();
    if (configured.elements.empty()) {
        if (dry) print_all(current);
        return EXIT_SUCCESS;
    }
    const Plan plan = make_plan(configured, current, server.host());
    report(plan);
    if (!dry) return set(server, plan, current);
    print_all(plan.path);
    return EXIT_SUCCESS;
}

enum class Task { SET, DRY_RUN, LIST, HELP, VERSION };

/// No value when the arguments are wrong; the user has been told then.
std::optional<Task> task_of(int argc, char** argv) {
    if (argc < 2) return Task::SET;
    const std::string_view option = argv[1];
    if (argc > 2) {
        complain("one option at a time; see glyphward-session --help");
        return std::nullopt;
    }
    if (option == "--dry-run") return Task::DRY_RUN;
    if (option == "--list") return Task::LIST;
    if (option == "--help") return Task::HELP;
    if (option == "--version") return Task::VERSION;
    complain("unknown argument " + std::string(option) + "; see glyphward-session --help");
    return std::nullopt;
}

int carry_out(Task task) {
    if (task == Task::HELP) {
        std::fputs(USAGE, stdout);
        return EXIT_SUCCESS;
    }
    if (task == Task::VERSION) {
        std::puts("glyphward-session (Glyph Warden) " GLYPHWARD_VERSION);
        return EXIT_SUCCESS;
    }
    if (lacks_home()) {
        complain("HOME is not set, so the font path is not known");
        return EXIT_FAILURE;
    }
    const Configuration configuration = read_configuration(gw::INSTALLATION_ROOT, gw::SETUP_RECORD);
    for (const Remark& remark : configuration.unread) complain(remark);
    return task == Task::LIST ? list(configuration.elements) : run(task == Task::DRY_RUN, configuration);
}

}  // namespace

int main(int argc, char** argv) {
    open_standard_descriptors();
    std::setlocale(LC_ALL, "");
    gw::listen_to_failures(complain_of);
    const std::optional<Task> task = task_of(argc, argv);
    if (!task) return USAGE_ERROR;
    const int status = carry_out(*task);
    if (std::fflush(stdout) == 0) return status;
    complain("standard output cannot be written");
    return EXIT_FAILURE;
}
