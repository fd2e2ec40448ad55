// SPDX-License-Identifier: MIT
//
// A second process of the program's code beside the test.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace gw::test {

/// Another process of this user, which does something and then waits until it is killed.
template <class Step>
class AnotherRun {
  public:
    explicit AnotherRun(Step step) {
        int ready[2];
        if (::pipe(ready) != 0) throw std::runtime_error("pipe");
        child_ = ::fork();
        if (child_ == 0) {
            const std::string answer = step() + '\n';
            [[maybe_unused]] const ssize_t told = ::write(ready[1], answer.data(), answer.size());
            for (;;) ::pause();
        }
        ::close(ready[1]);
        char byte = 0;
        while (::read(ready[0], &byte, 1) == 1 && byte != '\n') answer_ += byte;
        ::close(ready[0]);
    }
    ~AnotherRun() { kill(); }
    AnotherRun(const AnotherRun&) = delete;
    AnotherRun& operator=(const AnotherRun&) = delete;

    [[nodiscard]] const std::string& answer() const { return answer_; }
    void kill() {
        if (child_ <= 0) return;
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
        child_ = 0;
    }

  private:
    pid_t child_ = 0;
    std::string answer_;
};

}  // namespace gw::test
