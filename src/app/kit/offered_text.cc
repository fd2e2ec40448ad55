// SPDX-License-Identifier: MIT
#include "app/kit/offered_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <Xm/Xm.h>

namespace gw {

namespace {

std::string& offered() {
    static std::string text;
    return text;
}

enum Target { TARGETS, UTF8_STRING, COMPOUND_TEXT, TEXT, CLIPBOARD, TARGET_COUNT };

Atom atom_of(Display* on, Target target) {
    static constexpr std::array<const char*, TARGET_COUNT> NAMES = {"TARGETS", "UTF8_STRING", "COMPOUND_TEXT",
                                                                    "TEXT", "CLIPBOARD"};
    return XInternAtom(on, NAMES.at(target), False);
}

/// The toolkit frees what it is given by XtFree.
void give(const void* bytes, std::size_t size, XtPointer* value, unsigned long* length) {
    char* copy = XtMalloc(static_cast<Cardinal>(size) + 1);
    std::memcpy(copy, bytes, size);
    *value = copy;
    *length = size;
}

bool give_targets(Display* on, Atom* type, XtPointer* value, unsigned long* length, int* format) {
    const Atom all[] = {atom_of(on, TARGETS), atom_of(on, UTF8_STRING), atom_of(on, COMPOUND_TEXT), XA_STRING,
                        atom_of(on, TEXT)};
    give(all, sizeof all, value, length);
    *length = std::size(all);
    *type = XA_ATOM;
    *format = 32;
    return true;
}

/// The text in the form that is asked for. Characters that the form does not have become something else.
bool give_text(Display* on, XICCEncodingStyle style, Atom* type, XtPointer* value, unsigned long* length,
               int* format) {
    char* list[] = {offered().data()};
    XTextProperty text = {};
    if (XmbTextListToTextProperty(on, list, 1, style, &text) < 0) return false;
    give(text.value, text.nitems, value, length);
    *type = text.encoding;
    *format = text.format;
    XFree(text.value);
    return true;
}

Boolean convert(Widget w, Atom*, Atom* target, Atom* type, XtPointer* value, unsigned long* length,
                int* format) {
    Display* on = XtDisplay(w);
    if (*target == atom_of(on, TARGETS)) return give_targets(on, type, value, length, format) ? True : False;
    if (*target == XA_STRING) return give_text(on, XStringStyle, type, value, length, format) ? True : False;
    if (*target == atom_of(on, UTF8_STRING))
        return give_text(on, XUTF8StringStyle, type, value, length, format) ? True : False;
    if (*target == atom_of(on, COMPOUND_TEXT))
        return give_text(on, XCompoundTextStyle, type, value, length, format) ? True : False;
    if (*target == atom_of(on, TEXT))
        return give_text(on, XStdICCTextStyle, type, value, length, format) ? True : False;
    return False;
}

}  // namespace

bool offer_text(Widget w, const std::string& text) {
    offered() = text;
    const Time now = XtLastTimestampProcessed(XtDisplay(w));
    bool is_ours = true;
    for (const Atom selection : {XA_PRIMARY, atom_of(XtDisplay(w), CLIPBOARD)})
        is_ours = XtOwnSelection(w, selection, now, convert, nullptr, nullptr) != False && is_ours;
    return is_ours;
}

}  // namespace gw
