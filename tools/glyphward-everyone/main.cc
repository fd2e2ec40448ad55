// SPDX-License-Identifier: MIT
//
// Installs fonts for all users of the machine. An ordinary user's program starts it through pkexec, as the
// superuser, and sends the fonts on standard input; see docs/EVERYONE.md. Whatever the user controls stays
// outside: there is no argument, no path, no variable of the environment and no open file.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/rights.h"
#include "platform/scratch.h"

#include "glyphward-everyone/reception.h"
#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/interruption.h"

namespace {

using gw::fonts::Status;

constexpr mode_t UMASK = 022;
constexpr rlim_t FILES = 1024;
#ifdef GLYPHWARD_SANITIZE
constexpr rlim_t MEMORY = RLIM_INFINITY;  // a sanitizer reserves terabytes that it does not use
#else
constexpr rlim_t MEMORY = 2UL << 30U;  // bytes
#endif
constexpr rlim_t LARGEST_FILE = 1UL << 28U;  // bytes; a converted font may be larger than what it was made of

int refuse(const char* why) {
    std::fprintf(stderr, "glyphward-everyone: %s\n", why);
    return static_cast<int>(Status::USAGE);
}

/// Without this, a file that is opened later could become standard input, output or error.
bool has_standard_descriptors() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) < 0) return false;
    }
    return true;
}

/// The programs that the engine starts are found in the places of the system, and speak English.
void make_environment() {
    ::clearenv();
    ::setenv("LC_ALL", "C", 1);
}

/// Whatever the user has left to this process as a limit, it has these.
void limit(int what, rlim_t most, rlim_t hard = RLIM_INFINITY) {
    const struct rlimit limits = {most, hard};
    (void)::setrlimit(what, &limits);
}

void make_limits() {
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_AS, MEMORY);
    limit(RLIMIT_FSIZE, LARGEST_FILE);
    limit(RLIMIT_NOFILE, FILES, FILES);
    limit(RLIMIT_CPU, RLIM_INFINITY);
    limit(RLIMIT_DATA, RLIM_INFINITY);
    limit(RLIMIT_NPROC, RLIM_INFINITY);
    ::alarm(0);
}

/// Nothing that the user has ignored or blocked stays so, and the user's terminal cannot stop this process
/// while it has the lock of everyone's fonts.
void make_signals() {
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) (void)::signal(signal, SIG_DFL);
    // A file that would be too large is one that cannot be written; an answer that nobody reads is not
    // missed.
    for (const int signal : {SIGXFSZ, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU}) (void)::signal(signal, SIG_IGN);
    (void)::setsid();
}

/// What is said about each font is in the answer.
void be_silent() {
    const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null >= 0) ::dup2(null, STDERR_FILENO);
}

bool make_surroundings() {
    make_environment();
    ::umask(UMASK);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    make_limits();
    make_signals();
    return ::chdir("/") == 0;
}

gw::fonts::IfThere as_command(gw::NameTaken decision) {
    switch (decision) {
        case gw::NameTaken::REPLACE:
            return gw::fonts::IfThere::REPLACE;
        case gw::NameTaken::KEEP:
            return gw::fonts::IfThere::KEEP;
        case gw::NameTaken::REFUSE:
            break;
    }
    return gw::fonts::IfThere::REFUSE;
}

int install() {
    gw::fonts::Settings settings;
    settings.json = true;
    gw::fonts::Report report("install", settings);
    gw::fonts::await_interruption();
    (void)gw::remove_left_scratch();
    gw::everyone::Reception reception;
    report.leave_out(reception.directory());
    if (const std::string fault = reception.receive(STDIN_FILENO); !fault.empty()) {
        report.document()["fonts"] = gw::fonts::Json::array();
        report.document()["changed"] = false;
        report.trouble("the stream of fonts", fault);
        return report.finish(Status::COULD_NOT);
    }
    // From now on the user cancels by closing the other end.
    gw::fonts::await_hang_up(STDIN_FILENO);
    gw::fonts::prepare_engine();
    const gw::fonts::InstallOptions options = {reception.sources(), gw::fonts::Destination::EVERYONE, "",
                                               as_command(reception.decision())};
    return report.finish(gw::fonts::install(options, report));
}

}  // namespace

int main(int argc, char**) {
    if (!has_standard_descriptors()) return static_cast<int>(Status::USAGE);
    if (argc != 1) return refuse("it takes no arguments");
    if (!gw::runs_as_superuser() || ::getuid() != ::geteuid())
        return refuse("it is started by pkexec, as the superuser");
    if (!make_surroundings()) return refuse("the root directory cannot be entered");
    be_silent();
    return install();
}
