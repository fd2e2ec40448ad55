// SPDX-License-Identifier: MIT
//
// What keeps Motif out of the dialogs' way: handles that release what the toolkit hands out (nothing else
// calls its free functions), builders for the widgets that dialogs are made of, attachments, and what all
// dialogs do alike.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "app/kit/messages.h"

#include <Xm/Xm.h>

namespace gw {

// --- handles -----------------------------------------------------------------

struct XmStringDeleter {
    void operator()(XmString s) const;
};
using XmText = std::unique_ptr<std::remove_pointer_t<XmString>, XmStringDeleter>;

struct XtDeleter {
    void operator()(void* storage) const;
};
template <class T>
using XtOwned = std::unique_ptr<T, XtDeleter>;

struct FontListDeleter {
    void operator()(XmFontList list) const;
};
using FontList = std::unique_ptr<std::remove_pointer_t<XmFontList>, FontListDeleter>;

/// A font list copies its entries: one that was appended is released at once.
void free_entry(XmFontListEntry entry);

/// `text` in the current locale; newlines separate lines.
XmText xm_text(const std::string& text);

/// The toolkit takes names as `char*` without writing to them.
inline char* name_arg(const char* name) {
    return const_cast<char*>(name);
}

// --- reading widgets ---------------------------------------------------------

/// The text of a string, with its newlines and tabs.
std::string text_of(XmString string);
std::string label_of(Widget w);
std::string field_text(Widget text_field);
/// The selected positions of a list, 1-based and ascending.
std::vector<int> selected_positions(Widget list);
int selected_count(Widget list);

// --- builders: each creates one managed widget under that name ---------------

Widget form(Widget parent, const char* name);
/// A dialog: a form in a shell of its own, unmanaged, centred when it appears.
Widget form_dialog(Widget parent, const char* name, Message title);
Widget label(Widget parent, const char* name, Message text);
Widget label(Widget parent, const char* name, const std::string& text);
Widget push_button(Widget parent, const char* name, Message text);
Widget separator(Widget parent, const char* name);
Widget text_field(Widget parent, const char* name);
/// A list with scroll bars in which several items can be selected; the widget returned is the list, its
/// parent the scrolled window.
Widget scrolled_list(Widget parent, const char* name);
/// Makes the list wide enough for lines of `columns` characters.
void set_list_columns(Widget list, std::size_t columns);
/// Scrolls the list so that the position can be seen.
void show_position(Widget list, int position);
Widget scrolled_window(Widget parent, const char* name);

/// A message box: its `type` (XmDIALOG_WARNING, ...) gives the symbol, and the `parts` (XmDIALOG_OK_BUTTON,
/// ...) are taken away. Unmanaged, centred when it appears. Escape presses OK where OK is its only button.
Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without);

/// One button of a row; one without a callback is insensitive.
struct RowButton {
    const char* name;
    Message text;
    XtCallbackProc callback;
    XtPointer client_data = nullptr;
};
/// Fills a form with buttons of equal width and height; returns them in order.
std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons);
/// The end of a dialog: below `above` a separator, a form "button_form" of buttons of equal width, and the
/// message line "msg_label", which is returned through `message`. Returns the buttons in order.
std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message = nullptr);

struct OptionMenu {
    Widget menu;
    Widget pulldown;
};
/// An option menu with one entry; its label stands in a widget of its own.
OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name,
                       const std::string& first_entry);
/// A push button in a pulldown, under `name`, showing `text`.
Widget menu_button(Widget pulldown, const char* name, const std::string& text);

// --- attachments -------------------------------------------------------------

/// Attaches a child of a form, side by side: `Attach(w).top_form(5).left_to(label, 5)`.
class Attach {
  public:
    explicit Attach(Widget w) : w_(w) {}
    const Attach& top_form(int offset) const { return to_form(XmNtopAttachment, XmNtopOffset, offset); }
    const Attach& bottom_form(int offset) const {
        return to_form(XmNbottomAttachment, XmNbottomOffset, offset);
    }
    const Attach& left_form(int offset) const { return to_form(XmNleftAttachment, XmNleftOffset, offset); }
    const Attach& right_form(int offset) const { return to_form(XmNrightAttachment, XmNrightOffset, offset); }
    const Attach& sides(int offset) const { return left_form(offset).right_form(offset); }
    const Attach& below(Widget w, int offset) const {
        return to_widget(XmNtopAttachment, XmNtopWidget, XmNtopOffset, w, offset);
    }
    const Attach& above(Widget w, int offset) const {
        return to_widget(XmNbottomAttachment, XmNbottomWidget, XmNbottomOffset, w, offset);
    }
    const Attach& right_of(Widget w, int offset) const {
        return to_widget(XmNleftAttachment, XmNleftWidget, XmNleftOffset, w, offset);
    }
    const Attach& left_of(Widget w, int offset) const {
        return to_widget(XmNrightAttachment, XmNrightWidget, XmNrightOffset, w, offset);
    }
    /// Between two positions of the form, in hundredths of its width.
    const Attach& columns(int left, int right) const;

  private:
    const Attach& to_form(const char* attachment, const char* offset_name, int offset) const;
    const Attach& to_widget(const char* attachment, const char* widget_name, const char* offset_name,
                            Widget w, int offset) const;
    Widget w_;
};

/// The height in pixels that the widget would have by itself.
int natural_height(Widget w);
/// By how many pixels `low`, side by side with `tall`, is to be shifted so that their middles are at one
/// height; 0 where `low` is the taller one.
int centring_offset(Widget low, Widget tall);

// --- what all dialogs do alike -----------------------------------------------

/// Calls `Function(client data as Record*)`, the casts between the toolkit's pointers and ours being made
/// here alone.
template <class Record, void (*Function)(Widget, Record*, XtPointer)>
void thunk(Widget w, XtPointer client_data, XtPointer call_data) {
    Function(w, static_cast<Record*>(client_data), call_data);
}

/// What happens when a dialog appears: it is centred, and its windows are named. The builders have done it.
void add_map_callbacks(Widget dialog);

/// The label's text becomes `text`.
void set_label(Widget w, const std::string& text);

/// Gives the window of every widget below `w` the widget's name, for those who look from outside: with
/// `xwininfo -tree` the parts of a window can be told apart, and `xdotool` finds them.
void name_windows(Widget w);

/// The window manager's close box of a dialog (or of the main window) runs `callback`, which should do what
/// Cancel or Close does.
void on_close_box(Widget dialog, XtCallbackProc callback);

/// Rings again and again while it lives: an event to wake up for always comes. A timer that rings once may do
/// so while work that runs meanwhile serves events, and then nothing ends a wait.
class Ticker {
  public:
    Ticker() { start(); }
    ~Ticker() { XtRemoveTimeOut(id_); }
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

  private:
    void start();
    XtIntervalId id_ = 0;
};

/// Has a dialog drawn that was just managed, before long work begins. A window manager takes its time to put
/// it on the screen: it is waited for, but not longer than a second.
void draw_at_once(Widget dialog);

}  // namespace gw

/// Callback of every dialog when it appears: centres its shell on the screen.
void popup_cb(Widget w, void* client_data, void* call_data);
/// Sets the dialog's title, in the current locale.
void set_window_title(Widget dialog, const char* title);
/// Shows (`on` non-zero) or removes the busy cursor on `w`, if it is managed, and has the display drawn.
void set_watch_cursor(Widget w, int on);
/// Sets the widget's sensitivity.
void activate(Widget w, char on);
/// The child of `ancestor` that is, or contains, `w`; null when `w` is not inside.
Widget get_constraint_widget(Widget w, Widget ancestor);
