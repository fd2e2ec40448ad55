// SPDX-License-Identifier: MIT
//
// All windows but the main one, with what each of them needs to be shown.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <X11/Intrinsic.h>

namespace gw::test {

struct Dialog {
    const char* name;
    Widget* widget;
    std::function<void()> show;
    std::vector<const char*> parts;   ///< the names of its widgets
    std::set<std::string> idle = {};  ///< buttons that do nothing, deliberately
};

/// The dialogs of the combination that is tested. Those with several pages are there once for each.
std::vector<Dialog> dialogs();

}  // namespace gw::test
