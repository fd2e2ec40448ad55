// SPDX-License-Identifier: MIT
//
// Runs the command in a child process that has begun as this one: cheaper than the program, and its changes
// of the disk can go wrong.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "command/fonts_command.h"
#include "glyphward-fonts/command_line.h"
#include "platform/host_paths.h"
#include "support/file_faults.h"
#include "support/sfnt_maker.h"

namespace gw::test {

/// Which call goes wrong, and how.
struct Wrong {
    FileFaults::Fault fault = FileFaults::Fault::NONE;
    int at = 0;
    int error = EIO;
};

struct Ended {
    int status = -1;
    bool is_killed = false;
    int calls = 0;  ///< that change the disk, unless it was killed
    std::string out;
    std::string err;
};

inline Ended run_in_child(std::vector<std::string> words, const Wrong& wrong = {}) {
    const TempDir dir;
    words.insert(words.begin(), "glyphward-fonts");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    const pid_t child = ::fork();
    if (child == 0) {
        redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
        redirect(STDOUT_FILENO, dir.file("out"), O_WRONLY | O_CREAT);
        redirect(STDERR_FILENO, dir.file("err"), O_WRONLY | O_CREAT);
        int status = 0;
        int calls = 0;
        {
            const FileFaults faults(wrong.fault, wrong.at, wrong.error);
            status = fonts::run(static_cast<int>(arguments.size()), arguments.data());
            calls = FileFaults::calls();
        }
        std::ofstream(dir.file("calls")) << calls << std::flush;
        ::_exit(status);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    const std::string calls = dir.read("calls");
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
            calls.empty() ? 0 : std::stoi(calls), dir.read("out"), dir.read("err")};
}

/// A font of this family. Another variant has the same names and other bytes.
inline std::string small_font(const std::string& family, unsigned variant = 0) {
    SfntMaker maker;
    maker.names = windows_names(family);
    maker.charmap = 1;
    maker.characters.clear();
    for (char32_t code = 0x20; code < 0x7F; ++code) maker.characters += code;
    return maker.make() + std::string(std::size_t{4} * variant, '\0');
}

/// A machine with one directory on its font path, for a while.
class OwnMachine {
  public:
    OwnMachine() : config_before_(TempDir::read_bytes(config())) {
        if (::geteuid() == 0) {
            std::ofstream(config()) << "XDISPLAY.0.fontpath:\t" << to() << '\n';
        } else {
            (void)home_.dir().write(".VTfontpath", to() + '\n');
        }
    }
    ~OwnMachine() {
        if (::geteuid() == 0) std::ofstream(config()) << config_before_;
    }
    OwnMachine(const OwnMachine&) = delete;
    OwnMachine& operator=(const OwnMachine&) = delete;

    [[nodiscard]] const std::string& to() const { return to_; }
    [[nodiscard]] const TempDir& source() const { return source_; }
    /// Whose font path the directory is on.
    static std::string whose() { return ::geteuid() == 0 ? "installation" : "me"; }
    /// The file with that font path; names of this machine's directories are always the same ones.
    [[nodiscard]] std::string path_file() const {
        std::string text = TempDir::read_bytes(::geteuid() == 0 ? config() : home_.dir().file(".VTfontpath"));
        for (std::size_t at = text.find(home_.dir().path()); at != std::string::npos;
             at = text.find(home_.dir().path()))
            text.replace(at, home_.dir().path().size(), "~/");
        return text;
    }

  private:
    static std::string config() { return std::string(INSTALLATION_ROOT) + INSTALLATION_CONFIG; }

    Variable no_display_{"DISPLAY", nullptr};
    OwnHome home_;
    TempDir source_;
    std::string to_ = home_.dir().make_dir("fonts");
    std::string config_before_;
};

}  // namespace gw::test
