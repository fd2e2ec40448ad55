// SPDX-License-Identifier: MIT
#include "app/kit/atoms.h"

#include <vector>

#include "app/kit/handles.h"

namespace gw {

void ask_for_atoms(Display* display) {
    // Xlib keeps few of them: none is asked for that is not needed before the first window is drawn.
    std::vector<char*> names = {
        name_arg("UTF8_STRING"),      name_arg("_NET_WM_NAME"),  name_arg("_NET_WM_ICON_NAME"),
        name_arg("_NET_WM_ICON"),     name_arg("WM_TAKE_FOCUS"), name_arg("_NET_WM_PING"),
        name_arg("_MOTIF_WM_OFFSET"), name_arg("text/uri-list"),
    };
    for (const char* name : DROP_NAMES) names.push_back(name_arg(name));
    std::vector<Atom> atoms(names.size());
    XInternAtoms(display, names.data(), static_cast<int>(names.size()), False, atoms.data());
}

}  // namespace gw
