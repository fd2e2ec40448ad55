// SPDX-License-Identifier: MIT
//
// Handles that release what the toolkit allocates (only they call its free functions), and conversions
// between its strings and text.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <Xm/Xm.h>

namespace gw {

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

/// A font list copies its entries, so an entry is released as soon as it was appended.
void free_entry(XmFontListEntry entry);

/// `text` in the current locale; newlines separate lines.
XmText xm_text(const std::string& text);
/// The same for one line, in a twentieth of the time: a list has thousands. The toolkit takes both for equal.
XmText xm_row(const std::string& text);

/// The text of a string, with its newlines and tabs.
std::string text_of(XmString string);

/// The toolkit takes names as `char*` without writing to them.
inline char* name_arg(const char* name) {
    return const_cast<char*>(name);
}

}  // namespace gw
