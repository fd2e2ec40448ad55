// SPDX-License-Identifier: MIT
//
// Another client of the X server, which asks for selections as a program does that the user pastes into.
// Include it last.
#pragma once

#include <stdexcept>
#include <string>

#include "support/library_leaks.h"
#include "widget/widget_test_support.h"

#include <X11/Xlib.h>

namespace gw::test {

class PastingClient {
  public:
    PastingClient() : display_(XOpenDisplay(nullptr)) {
        if (display_ == nullptr) throw std::runtime_error("these tests want the sandbox's X server");
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    }
    ~PastingClient() { XCloseDisplay(display_); }
    PastingClient(const PastingClient&) = delete;
    PastingClient& operator=(const PastingClient&) = delete;

    /// The text of the selection ("PRIMARY", "CLIPBOARD") as `target` ("STRING"); "(nothing)" when nobody has
    /// it, or not as that.
    [[nodiscard]] std::string paste(const char* selection, const char* target = "STRING") const {
        const Atom property = atom("GW_PASTED");
        // The toolkit's clipboard loses 128 bytes each time that somebody takes something from it.
        const LibraryLeaks leaks;
        XConvertSelection(display_, atom(selection), atom(target), property, window_, CurrentTime);
        XEvent event = {};
        const auto answered = [&] {
            return XCheckTypedWindowEvent(display_, window_, SelectionNotify, &event) != False;
        };
        if (!pump_until(answered) || event.xselection.property == atom("NONE") ||
            event.xselection.property == 0) {
            return "(nothing)";
        }
        return text_in(property);
    }

  private:
    [[nodiscard]] Atom atom(const char* name) const { return XInternAtom(display_, name, False); }
    [[nodiscard]] std::string text_in(Atom property) const {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display_, window_, property, 0, 100000, True, AnyPropertyType, &type, &format,
                           &count, &rest, &bytes);
        const std::string text(reinterpret_cast<char*>(bytes), count);
        XFree(bytes);
        return text;
    }

    Display* display_;
    Window window_;
};

}  // namespace gw::test
