// SPDX-License-Identifier: MIT
//
// A text that the user has selected and copied in another program, as long as the object lives: a process of
// its own gives it to everybody who pastes.
#pragma once

#include <sys/types.h>

#include <string>

namespace gw::e2e {

class SelectedText {
  public:
    /// Waits until the text can be pasted, with the middle button and from the clipboard.
    explicit SelectedText(const std::string& text);
    ~SelectedText();
    SelectedText(const SelectedText&) = delete;
    SelectedText& operator=(const SelectedText&) = delete;

  private:
    pid_t pid_ = -1;
};

}  // namespace gw::e2e
