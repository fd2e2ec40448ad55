// SPDX-License-Identifier: MIT
#include "app/kit/mnemonics.h"

#include <langinfo.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/kit/busy_windows.h"
#include "app/kit/free_letters.h"
#include "app/kit/handles.h"
#include "app/kit/widgets.h"

#include <X11/keysym.h>
#include <Xm/CascadeB.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/ToggleB.h>

namespace gw {

namespace {

XtEventDispatchProc the_toolkits_dispatcher = nullptr;
bool are_used = false;

std::map<Widget, Widget>& labelled() {
    static auto* const controls = new std::map<Widget, Widget>;  // NOLINT(cppcoreguidelines-owning-memory)
    return *controls;
}

// --- which controls ------------------------------------------------------------

bool is_control(Widget w) {
    const bool is_button = XmIsPushButton(w) || XmIsToggleButton(w);
    return is_button || (XmIsLabel(w) && labelled().contains(w));
}

/// Collects the controls below `w`. Parts of a window that are away are left out, but not single buttons:
/// these come and go while the window is seen.
void collect(Widget w, std::vector<Widget>& controls, std::string& taken) {
    if (!XtIsComposite(w)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        Widget child = children[i];
        if (XmIsCascadeButton(child) && XtIsManaged(child)) {
            KeySym letter = NoSymbol;
            XtVaGetValues(child, XmNmnemonic, &letter, nullptr);
            if (letter != NoSymbol) taken += static_cast<char>(letter);
        } else if (XtIsWidget(child) && is_control(child)) {
            controls.push_back(child);
        } else if (XtIsManaged(child)) {
            collect(child, controls, taken);
        }
    }
}

/// Where the dots or the colon at the end of a text begin.
std::size_t end_of_words(std::string_view text) {
    for (const std::string_view end : {"...", ": ", ":"}) {
        if (text.ends_with(end)) return text.size() - end.size();
    }
    return text.size();
}

/// The letter that was put behind a text without Latin letters, and where it stands.
std::optional<std::size_t> place_of_added_letter(const std::string& text) {
    const std::string_view rest = std::string_view(text).substr(0, end_of_words(text));
    constexpr std::size_t LENGTH = 3;  // "(X)"
    if (rest.size() <= LENGTH || rest.back() != ')' || rest[rest.size() - LENGTH] != '(') return std::nullopt;
    return rest.size() - LENGTH;
}

/// The text without a letter in parentheses that we have added.
std::string own_text(const std::string& text) {
    const std::optional<std::size_t> place = place_of_added_letter(text);
    if (!place) return text;
    std::string own = text;
    own.erase(*place, 3);
    return has_latin(own) ? text : own;
}

std::string with_letter(const std::string& text, char letter) {
    const std::size_t end = end_of_words(text);
    return text.substr(0, end) + '(' + letter + ')' + text.substr(end);
}

void set_text(Widget w, const std::string& text) {
    const XmText string = xm_text(text);
    XtVaSetValues(w, XmNlabelString, string.get(), nullptr);
}

/// The fonts of other encodings are wider, and leave no room for a letter behind each text.
bool has_room_for_letters() {
    return nl_langinfo(CODESET) == std::string_view("UTF-8");
}

void give(Widget w, const std::string& text, char letter) {
    if (!has_latin(text)) {
        if (!has_room_for_letters()) return;
        const std::string shown = letter != NO_LETTER ? with_letter(text, letter) : text;
        if (shown != label_of(w)) set_text(w, shown);
    }
    KeySym before = NoSymbol;
    XtVaGetValues(w, XmNmnemonic, &before, nullptr);
    const auto now = static_cast<KeySym>(static_cast<unsigned char>(letter));
    if (before != now) XtVaSetValues(w, XmNmnemonic, now, nullptr);
}

// --- the keys ------------------------------------------------------------------

Widget shell_of(Widget w) {
    while (w != nullptr && !XtIsShell(w)) w = XtParent(w);
    return w;
}

/// A widget is seen when it and all around it are managed.
bool is_there(Widget w) {
    for (; w != nullptr && !XtIsShell(w); w = XtParent(w)) {
        if (!XtIsManaged(w)) return false;
    }
    return true;
}

Widget control_with(Widget shell, char letter) {
    std::vector<Widget> controls;
    std::string taken;
    collect(shell, controls, taken);
    for (Widget w : controls) {
        KeySym own = NoSymbol;
        XtVaGetValues(w, XmNmnemonic, &own, nullptr);
        if (own != NoSymbol && lower_letter(static_cast<char>(own)) == letter && XtIsSensitive(w) &&
            is_there(w))
            return w;
    }
    return nullptr;
}

void use(Widget control, XEvent* event) {
    if (const auto found = labelled().find(control); found != labelled().end()) {
        XmProcessTraversal(found->second, XmTRAVERSE_CURRENT);
        return;
    }
    XmProcessTraversal(control, XmTRAVERSE_CURRENT);
    XtCallActionProc(control, "ArmAndActivate", event, nullptr, 0);
}

/// Whether the key was one of ours.
bool was_used(XEvent* event) {
    constexpr unsigned OTHER_MODIFIERS = ControlMask | Mod4Mask;
    if ((event->xkey.state & Mod1Mask) == 0 || (event->xkey.state & OTHER_MODIFIERS) != 0) return false;
    Widget shell = shell_of(XtWindowToWidget(event->xkey.display, event->xkey.window));
    if (shell == nullptr || XtIsOverrideShell(shell) || BusyWindows::are_busy()) return false;
    const KeySym key = XLookupKeysym(&event->xkey, 0);
    const bool is_letter = key >= XK_a && key <= XK_z;
    if (!is_letter && (key < XK_0 || key > XK_9)) return false;
    Widget control = control_with(shell, static_cast<char>(key));
    if (control == nullptr) return false;
    use(control, event);
    return true;
}

Boolean dispatch_key(XEvent* event) {
    if (was_used(event)) return True;
    return the_toolkits_dispatcher(event);
}

void forget_label_cb(Widget label, XtPointer, XtPointer) {
    labelled().erase(label);
}

}  // namespace

void use_mnemonics(Display* display) {
    if (are_used) return;
    are_used = true;
    the_toolkits_dispatcher = XtSetEventDispatcher(display, KeyPress, dispatch_key);
}

void assign_mnemonics(Widget window) {
    if (!are_used) return;
    std::vector<Widget> controls;
    std::string taken;
    collect(window, controls, taken);
    std::vector<std::string> texts;
    std::vector<std::string> names;
    for (Widget w : controls) {
        texts.push_back(own_text(label_of(w)));
        names.emplace_back(XtName(w));
    }
    const std::string letters = free_letters(texts, names, taken);
    for (std::size_t i = 0; i < controls.size(); ++i) give(controls[i], texts[i], letters[i]);
}

void assign_mnemonics_around(Widget w) {
    if (are_used && is_control(w)) assign_mnemonics(shell_of(w));
}

void label_for(Widget label, Widget control) {
    if (!labelled().contains(label)) XtAddCallback(label, XmNdestroyCallback, forget_label_cb, nullptr);
    labelled()[label] = control;
}

}  // namespace gw
