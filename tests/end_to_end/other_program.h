// SPDX-License-Identifier: MIT
//
// A program of somebody else's, in the C locale, as long as the object lives.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace gw::e2e {

class OtherProgram {
  public:
    /// Starts the program; it is looked up in $PATH.
    explicit OtherProgram(std::vector<std::string> command);
    /// Ends it.
    ~OtherProgram();
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    [[nodiscard]] bool has_ended();
    /// What it has written to standard error so far.
    [[nodiscard]] std::string errors() const { return scratch_.read("errors"); }

  private:
    test::TempDir scratch_;
    pid_t pid_ = -1;
    bool has_ended_ = false;
};

}  // namespace gw::e2e
