// SPDX-License-Identifier: MIT
//
// Runs the installed `glyphward-fonts`, and reads what it says.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/temp_dir.h"

#include <nlohmann/json.hpp>

namespace gw::test {

using Json = nlohmann::json;

inline constexpr const char* FONTS_COMMAND = "/usr/vantor/bin/glyphward-fonts";

/// A good font of a package.
inline constexpr const char* SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

/// What a command has printed, and how it has ended.
struct Ran {
    int status = -1;
    std::string out;
    std::string err;

    /// The document of a command with --json.
    [[nodiscard]] Json json() const { return Json::parse(out, nullptr, false); }
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> all;
        std::istringstream text(out);
        for (std::string line; std::getline(text, line);) all.push_back(line);
        return all;
    }
};

/// In a child: `fd` is this file from now on.
inline void redirect(int fd, const std::string& path, int flags) {
    constexpr mode_t MODE = 0600;
    const int file = ::open(path.c_str(), flags, MODE);
    if (file < 0 || ::dup2(file, fd) < 0) ::_exit(126);
}

/// With these words behind its name. Standard input is `input`, and no terminal.
inline Ran fonts_command(std::vector<std::string> words, const std::string& input = "") {
    const TempDir dir;
    (void)dir.write("input", input);
    words.insert(words.begin(), FONTS_COMMAND);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        redirect(STDIN_FILENO, dir.file("input"), O_RDONLY);
        redirect(STDOUT_FILENO, dir.file("out"), O_WRONLY | O_CREAT);
        redirect(STDERR_FILENO, dir.file("err"), O_WRONLY | O_CREAT);
        ::execv(FONTS_COMMAND, arguments.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, dir.read("out"), dir.read("err")};
}

/// A variable of the environment has this value, or none, as long as this exists.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name); before != nullptr) before_ = before;
        value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ~Variable() { ::setenv(name_, before_.c_str(), 1); }
    [[nodiscard]] const std::string& before() const { return before_; }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
    std::string before_;
};

/// A home directory with nothing in it, as long as this exists.
class OwnHome {
  public:
    [[nodiscard]] const TempDir& dir() const { return dir_; }

  private:
    TempDir dir_;
    Variable home_{"HOME", dir_.c_str()};
};

}  // namespace gw::test
