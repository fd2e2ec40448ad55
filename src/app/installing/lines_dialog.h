// SPDX-License-Identifier: MIT
//
// A dialog with a sentence, a list of lines that are only read, and a button that closes it.
#pragma once

#include <string>
#include <vector>

#include "texts/messages.h"

#include <X11/Intrinsic.h>

namespace gw {

class LinesDialog {
  public:
    /// `close` hides the dialog.
    Widget create(const char* name, Widget parent, Message title, Message close_text, XtCallbackProc close);
    void show(const std::string& sentence, const std::vector<std::string>& lines);
    [[nodiscard]] bool is_open() const { return dialog_ != nullptr && XtIsManaged(dialog_); }

  private:
    Widget dialog_ = nullptr;
    Widget sentence_ = nullptr;
    Widget lines_ = nullptr;
};

}  // namespace gw
