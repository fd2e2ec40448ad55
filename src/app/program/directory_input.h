// SPDX-License-Identifier: MIT
//
// Changes in directories as events of the program.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/directory_watch.h"

#include <X11/Intrinsic.h>

namespace gw {

class DirectoryInput {
  public:
    /// Gets the directories that have changed, as they were given to `watch`.
    using Listener = void (*)(const std::set<std::string>& changed);

    /// From now on calls the listener in the event loop.
    explicit DirectoryInput(Listener listener);
    ~DirectoryInput();
    DirectoryInput(const DirectoryInput&) = delete;
    DirectoryInput& operator=(const DirectoryInput&) = delete;

    /// Watches the directories of these elements of a font path, and no others. What is not a directory of
    /// this host, or does not answer, is left out.
    void watch(const std::vector<std::string>& elements);

  private:
    static void on_input(XtPointer client_data, int* source, XtInputId* id);

    DirectoryWatch watch_;
    Listener listener_;
    XtInputId input_ = 0;
};

}  // namespace gw
