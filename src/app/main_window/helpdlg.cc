// SPDX-License-Identifier: MIT
#include "app/main_window/helpdlg.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/widgets.h"
#include "app/program/window_policy.h"
#include "core/replace_file.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/Text.h>

Widget wi_help_dlg = nullptr;
Widget wi_text = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr const char* TEXT_COLUMNS = "72";  // fits into the dialog at its usual size

/// Sets a variable of the environment, or unsets it (null), until the end of a scope.
class ScopedVariable {
  public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name); old != nullptr) old_ = old;
        set(value);
    }
    ~ScopedVariable() { set(old_ ? old_->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    void set(const char* value) const {
        if (value != nullptr) {
            ::setenv(name_, value, 1);
        } else {
            ::unsetenv(name_);
        }
    }
    const char* name_;
    std::optional<std::string> old_;
};

/// Writes the manual page to the scratch file: in plain ASCII, which the text widget can show in every
/// locale, with lines that fit, and without overstriking. man is found whatever the user's PATH is.
void run_man(const std::string& page, const std::string& errors) {
    const char* path = std::getenv("MANPATH");
    const std::string man_path = std::string(gw::MANUAL_DIR) + ':' + (path != nullptr ? path : "");
    const ScopedVariable where("MANPATH", man_path.c_str());
    const ScopedVariable width("MANWIDTH", TEXT_COLUMNS);
    const ScopedVariable formatting("MAN_KEEP_FORMATTING", nullptr);
    const ScopedVariable all_categories("LC_ALL", nullptr);
    const ScopedVariable characters("LC_CTYPE", "C");
    (void)gw::run_command("/bin/man glyphward > %s 2> %s", {page, errors}, gw::MOMENTS);
}

/// The manual page, or the message that there is none.
gw::XtOwned<char> manual() {
    char* text = nullptr;
    const std::string page = gw::scratch_path(gw::SCRATCH_MANUAL);
    const std::string errors = gw::scratch_path(gw::SCRATCH_MANUAL_ERRORS);
    // Other users' files with these names are neither written nor shown.
    if (gw::create_scratch_file(page) && gw::create_scratch_file(errors)) {
        run_man(page, errors);
        read_from_file(page.c_str(), &text);
    } else {
        read_from_file("", &text);
    }
    for (const std::string& file : {page, errors}) ::unlink(file.c_str());
    return gw::XtOwned<char>(text);
}

/// Whether the dialog has no manual page yet.
bool is_coming = false;

gw::XtOwned<char> first_text() {
    is_coming = gw::window_policy().makes_help_when_opened();
    return is_coming ? gw::XtOwned<char>(XtNewString(gw::text_of(Message::HELP_IS_COMING))) : manual();
}

Widget create_text(Widget parent) {
    const gw::XtOwned<char> text = first_text();
    Arg args[5];
    XtSetArg(args[0], XmNeditMode, XmMULTI_LINE_EDIT);
    XtSetArg(args[1], XmNeditable, False);
    XtSetArg(args[2], XmNcursorPositionVisible, False);
    XtSetArg(args[3], XmNvalue, text.get());
    XtSetArg(args[4], XmNscrollHorizontal, False);
    Widget w = XmCreateScrolledText(parent, gw::name_arg("text"), args, 5);
    XtManageChild(w);
    return w;
}

void close_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_help_dlg);
}

// Kept: the button of the help window does nothing. The window manager closes the window.
void end_help_dlg(Widget ok) {
    if (!gw::window_policy().answers_help_buttons())
        return gw::end_dialog(wi_help_dlg, {.initial_focus = wi_text});
    XtAddCallback(ok, XmNactivateCallback, close_cb, nullptr);
    // Otherwise its tab group is the window's, in which the initial focus comes first: that is the text
    // again.
    XtVaSetValues(ok, XmNnavigationType, XmTAB_GROUP, nullptr);
    // In a text of several lines Return would begin a line, and Tab would be a character.
    XtOverrideTranslations(wi_text,
                           XtParseTranslationTable("<Key>osfActivate: activate()\n"
                                                   "Shift<Key>Tab: prev-tab-group()\n"
                                                   "~Shift<Key>Tab: next-tab-group()\n"
                                                   "~Shift ~Ctrl ~Meta ~Alt <Key>Return: activate()"));
    gw::end_dialog(wi_help_dlg, {ok, ok, wi_text, close_cb});
}

}  // namespace

Widget create_help_dlg(const char* name, Widget parent) {
    wi_help_dlg = gw::form_dialog(parent, name, Message::HELP_TITLE);
    Widget ok = gw::push_button(wi_help_dlg, "ok_button", Message::HELP_OK);
    Attach(ok).bottom_form(GAP).columns(40, 60);
    wi_text = create_text(wi_help_dlg);
    Attach(XtParent(wi_text)).top_form(GAP).sides(GAP).above(ok, GAP);
    end_help_dlg(ok);
    return wi_help_dlg;
}

void start_help_dlg() {
    XtManageChild(wi_help_dlg);
    if (!is_coming) return;
    is_coming = false;
    process_xt_events();  // The window says that the page is coming.
    XmTextSetString(wi_text, manual().get());
}

void start_help_dlg_at(const char* heading) {
    start_help_dlg();
    const std::string line = std::string("\n") + heading + '\n';
    XmTextPosition position = 0;
    if (XmTextFindString(wi_text, 0, gw::name_arg(line.c_str()), XmTEXT_FORWARD, &position) != False)
        XmTextSetTopCharacter(wi_text, position + 1);
}

void read_from_file(const char* path, char** text) {
    const gw::Result<std::string> page = gw::read_file(path);
    *text = XtNewString(gw::name_arg(page && !page->empty() ? page->c_str() : gw::text_of(Message::NO_HELP)));
}
