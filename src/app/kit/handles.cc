// SPDX-License-Identifier: MIT
#include "app/kit/handles.h"

namespace gw {

void XmStringDeleter::operator()(XmString s) const {
    XmStringFree(s);
}

void XtDeleter::operator()(void* storage) const {
    XtFree(static_cast<char*>(storage));
}

void FontListDeleter::operator()(XmFontList list) const {
    XmFontListFree(list);
}

void free_entry(XmFontListEntry entry) {
    XmFontListEntryFree(&entry);
}

XmText xm_text(const std::string& text) {
    return XmText(XmStringCreateLocalized(name_arg(text.c_str())));
}

XmText xm_row(const std::string& text) {
    // The other one looks at each character for what a parse table might say about it.
    return XmText(XmStringCreate(name_arg(text.c_str()), name_arg(XmFONTLIST_DEFAULT_TAG)));
}

namespace {

struct ParseMappingDeleter {
    void operator()(XmParseMapping mapping) const { XmParseMappingFree(mapping); }
};
using ParseMapping = std::unique_ptr<std::remove_pointer_t<XmParseMapping>, ParseMappingDeleter>;

/// A mapping that gives `character` in the text where a string has the component `substitute`.
ParseMapping make_mapping(const char* character, XmString substitute) {
    const XmText owned(substitute);
    Arg args[4];
    XtSetArg(args[0], XmNpattern, character);
    XtSetArg(args[1], XmNpatternType, XmCHARSET_TEXT);
    XtSetArg(args[2], XmNsubstitute, owned.get());
    XtSetArg(args[3], XmNincludeStatus, XmINSERT);
    return ParseMapping(XmParseMappingCreate(args, 4));
}

}  // namespace

std::string text_of(XmString string) {
    // Without them the separators between lines, and tabs, would be lost. They are made once, because Motif
    // leaks some memory with about every sixtieth mapping.
    static const ParseMapping newline = make_mapping("\n", XmStringSeparatorCreate());
    static const ParseMapping tab =
        make_mapping("\t", XmStringComponentCreate(XmSTRING_COMPONENT_TAB, 0, nullptr));
    XmParseMapping table[] = {newline.get(), tab.get()};
    const XtOwned<char> text(static_cast<char*>(XmStringUnparse(
        string, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, table, XtNumber(table), XmOUTPUT_ALL)));
    return text ? text.get() : "";
}

}  // namespace gw
