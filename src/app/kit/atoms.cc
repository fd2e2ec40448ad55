// SPDX-License-Identifier: MIT
#include "app/kit/atoms.h"

#include <array>

#include "app/kit/handles.h"

namespace gw {

void ask_for_atoms(Display* display) {
    // Xlib keeps few of them: none is asked for that is not needed before the first window is drawn.
    std::array names = {
        name_arg("UTF8_STRING"),       name_arg("_NET_WM_NAME"),
        name_arg("_NET_WM_ICON_NAME"), name_arg("_NET_WM_ICON"),
        name_arg("WM_TAKE_FOCUS"),     name_arg("_NET_WM_PING"),
        name_arg("_MOTIF_WM_OFFSET"),  name_arg("_MOTIF_DRAG_WINDOW"),
        name_arg("_MOTIF_DRAG_ATOMS"), name_arg("UTF-8"),
        name_arg("CHARSET_REGISTRY"),  name_arg("_MOTIF_DRAG_TARGETS"),
        name_arg("WM_CLIENT_LEADER"),
    };
    std::array<Atom, names.size()> atoms = {};
    XInternAtoms(display, names.data(), static_cast<int>(names.size()), False, atoms.data());
}

}  // namespace gw
