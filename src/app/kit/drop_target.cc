// SPDX-License-Identifier: MIT
#include "app/kit/drop_target.h"

#include <algorithm>
#include <array>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "app/kit/handles.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xproto.h>

namespace gw {

namespace {

constexpr long VERSION = 5;
constexpr long OLDEST_VERSION = 3;
constexpr long MORE_THAN_THREE_TYPES = 1;
constexpr long MOST_TYPES = 4096;
constexpr unsigned VERSION_SHIFT = 24;

struct Atoms {
    Atoms(Display* d, const char* type_name) {
        // In one round trip.
        std::array names = {
            name_arg("XdndAware"),      name_arg("XdndEnter"),     name_arg("XdndPosition"),
            name_arg("XdndStatus"),     name_arg("XdndLeave"),     name_arg("XdndDrop"),
            name_arg("XdndFinished"),   name_arg("XdndSelection"), name_arg("XdndTypeList"),
            name_arg("XdndActionCopy"), name_arg(type_name),
        };
        std::array<Atom, std::tuple_size_v<decltype(names)>> atoms = {};
        XInternAtoms(d, names.data(), static_cast<int>(names.size()), False, atoms.data());
        std::tie(aware, enter, position, status, leave, drop, finished, selection, type_list, copy, type) =
            std::tuple_cat(atoms);
    }
    Atom aware, enter, position, status, leave, drop, finished, selection, type_list, copy;
    Atom type;  // of what can be dropped
};

struct Transfer;

/// A window on which something can be dropped. It lives as long as the program.
struct Target {
    Target(Widget w, const DropClient& c) : shell(w), client(c), atoms(XtDisplay(w), c.type) {}

    Widget shell;
    DropClient client;
    Atoms atoms;
    // What is over the window now.
    Window source = 0;
    bool has_our_type = false;
    // What was dropped and is still arriving; the toolkit owns it.
    Transfer* arriving = nullptr;
};

/// One drop, until the toolkit says that all has arrived or that nothing comes any more.
struct Transfer {
    Target* target;
    Window source;
    std::string bytes = {};
    bool is_over = false;  // what still comes is not wanted
};

// --- the other program may die at any time -----------------------------------

XErrorHandler handler_before = nullptr;

int ignore_dead_windows(Display* d, XErrorEvent* event) {
    const bool is_ours = event->request_code == X_SendEvent || event->request_code == X_GetProperty;
    return is_ours && event->error_code == BadWindow ? 0 : handler_before(d, event);
}

/// As long as it lives, it is no error to talk to a window that is not there.
class OtherProgram {
  public:
    explicit OtherProgram(Display* d) : display_(d) {
        XSync(display_, False);
        handler_before = XSetErrorHandler(ignore_dead_windows);
    }
    ~OtherProgram() {
        XSync(display_, False);
        XSetErrorHandler(handler_before);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

  private:
    Display* display_;
};

void tell_source(const Target& target, Window source, Atom what, bool accepted) {
    Display* d = XtDisplay(target.shell);
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.display = d;
    event.xclient.window = source;
    event.xclient.message_type = what;
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XtWindow(target.shell));
    event.xclient.data.l[1] = accepted ? 1 : 0;
    const long action = accepted ? static_cast<long>(target.atoms.copy) : 0;
    // The status has an empty rectangle before the action: whatever the pointer does, we want to know.
    event.xclient.data.l[what == target.atoms.status ? 4 : 2] = action;
    const OtherProgram guard(d);
    XSendEvent(d, source, False, NoEventMask, &event);
}

/// The types that the source has put on its window, because a message has room for three only.
std::vector<Atom> listed_types(const Target& target, Window source) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    const OtherProgram guard(XtDisplay(target.shell));
    const int failed = XGetWindowProperty(XtDisplay(target.shell), source, target.atoms.type_list, 0,
                                          MOST_TYPES, False, XA_ATOM, &type, &format, &count, &left, &data);
    if (failed != 0 || data == nullptr) return {};
    std::vector<Atom> types;
    if (type == XA_ATOM && format == 32) {
        const auto* atoms = reinterpret_cast<const Atom*>(data);  // NOLINT(*-reinterpret-cast)
        types.assign(atoms, atoms + count);
    }
    XFree(data);
    return types;
}

// --- the messages, in the order in which they come ----------------------------

void enter(Target& target, const XClientMessageEvent& message) {
    target.source = static_cast<Window>(message.data.l[0]);
    const long version = (message.data.l[1] >> VERSION_SHIFT) & 0xFF;
    std::vector<Atom> types;
    if ((message.data.l[1] & MORE_THAN_THREE_TYPES) != 0) {
        types = listed_types(target, target.source);
    } else {
        for (const int place : {2, 3, 4}) types.push_back(static_cast<Atom>(message.data.l[place]));
    }
    target.has_our_type =
        version >= OLDEST_VERSION && std::find(types.begin(), types.end(), target.atoms.type) != types.end();
}

bool would_take(const Target& target) {
    return target.has_our_type && target.client.is_welcome();
}

/// The drop is over for the source and for the window that wanted it, but perhaps not for the toolkit.
void end_transfer(Transfer& transfer, bool arrived) {
    if (std::exchange(transfer.is_over, true)) return;
    Target& target = *transfer.target;
    if (target.arriving == &transfer) target.arriving = nullptr;
    tell_source(target, transfer.source, target.atoms.finished, arrived);
    std::optional<std::string> bytes;
    if (arrived) bytes = std::move(transfer.bytes);
    transfer.bytes = {};
    target.client.take(std::move(bytes));
}

/// Gets one piece after another. The last one is empty; none at all means that no more will come.
void arrived_cb(Widget, XtPointer closure, Atom*, Atom* type, XtPointer value, unsigned long* length,
                int* format) {
    auto* transfer = static_cast<Transfer*>(closure);
    const XtOwned<char> bytes(static_cast<char*>(value));
    if (value != nullptr && *length > 0 && *type != XT_CONVERT_FAIL) {
        if (transfer->is_over) return;
        const bool fits = *format == 8 && *length <= MOST_DROPPED - transfer->bytes.size();
        if (fits) transfer->bytes.append(bytes.get(), *length);
        if (!fits) end_transfer(*transfer, false);
        return;
    }
    const std::unique_ptr<Transfer> last(transfer);
    end_transfer(*transfer, value != nullptr && *type != XT_CONVERT_FAIL && *type != 0);
}

void drop(Target& target, const XClientMessageEvent& message) {
    const Window source = std::exchange(target.source, 0);
    if (!would_take(target)) return tell_source(target, source, target.atoms.finished, false);
    target.has_our_type = false;
    if (target.arriving != nullptr) end_transfer(*target.arriving, false);
    target.arriving = new Transfer{&target, source};  // NOLINT(*-owning-memory): `arrived_cb` releases it
    XtGetSelectionValueIncremental(target.shell, target.atoms.selection, target.atoms.type, arrived_cb,
                                   target.arriving, static_cast<Time>(message.data.l[2]));
}

void message_cb(Widget shell, XtPointer data, XEvent* event, Boolean*) {
    Target& target = *static_cast<Target*>(data);
    const Atoms& atoms = target.atoms;
    if (event->type == MapNotify) {
        XChangeProperty(XtDisplay(shell), XtWindow(shell), atoms.aware, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&VERSION), 1);  // NOLINT(*-reinterpret-cast)
        return;
    }
    if (event->type != ClientMessage || event->xclient.format != 32) return;
    const XClientMessageEvent& message = event->xclient;
    if (message.message_type == atoms.enter) return enter(target, message);
    const auto source = static_cast<Window>(message.data.l[0]);
    if (source == 0 || source != target.source) return;
    if (message.message_type == atoms.position)
        return tell_source(target, source, atoms.status, would_take(target));
    if (message.message_type == atoms.drop) return drop(target, message);
    if (message.message_type == atoms.leave) target.source = 0;
}

}  // namespace

void accept_drops(Widget shell, const DropClient& client) {
    // It lives as long as the window, which nothing destroys.
    auto* const target = new Target(shell, client);  // NOLINT(cppcoreguidelines-owning-memory)
    XtAddEventHandler(shell, StructureNotifyMask, True, message_cb, target);
}

}  // namespace gw
