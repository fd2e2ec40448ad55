// SPDX-License-Identifier: MIT
#include "app/fontsets/coverage.h"

#include <langinfo.h>

#include <set>
#include <vector>

#include "app/kit/attach.h"
#include "app/kit/lists.h"
#include "app/kit/table_list.h"
#include "app/kit/widgets.h"
#include "app/program/server_watch.h"
#include "app/program/window_policy.h"
#include "core/text.h"
#include "model/gw_font.h"
#include "texts/messages.h"

#include <Xm/List.h>

namespace gw {

namespace {

constexpr int GAP = 8;
constexpr int VISIBLE_CHARSETS = 5;

Widget coverage_list = nullptr;
TableList table;

/// The last two fields of a font's name.
std::string charset_of(GWFont& font) {
    return std::string(font.get_field(GWFont::CHARSET_REGISTRY)) + '-' +
           font.get_field(GWFont::CHARSET_ENCODING);
}

/// The fonts of the set whose character sets the locale does not want.
void append_unwanted(std::vector<TableRow>& rows, const GWFontSet& set, const std::set<std::string>& wanted) {
    for (GWFont* font : set.get_fonts()) {
        const std::string charset = lower_case(charset_of(*font));
        if (wanted.contains(charset)) continue;
        rows.push_back({{charset}, {text_of(Message::CHARSET_NOT_WANTED)}, {font->get_xlfd_name()}});
    }
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

}  // namespace

Widget create_coverage(Widget dialog, Widget below) {
    coverage_list = nullptr;
    if (!window_policy().shows_fontset_coverage()) return nullptr;
    coverage_list = scrolled_list(dialog, "coverage_list");
    table = TableList(coverage_list);
    XtVaSetValues(coverage_list, XmNselectionPolicy, XmBROWSE_SELECT, XmNvisibleItemCount, VISIBLE_CHARSETS,
                  nullptr);
    Attach(XtParent(coverage_list)).sides(GAP).above(below, GAP);
    Widget title = label(dialog, "coverage_label", Message::COVERAGE_LABEL);
    Attach(title).left_form(GAP).above(XtParent(coverage_list), 2);
    return title;
}

std::string show_coverage(const GWFontSet& set) {
    if (coverage_list == nullptr) return "";
    const ServerUse use;
    ServerView* server = ServerUse::view();
    const char* names = set.get_fonts().is_empty() ? nullptr : set.get_base_names();
    const OpenedFontset opened =
        server != nullptr && names != nullptr ? server->open_fontset(names) : OpenedFontset{};
    std::vector<TableRow> rows;
    // A locale names a character set twice whose halves it can take from different fonts.
    std::set<std::string> wanted;
    for (const OpenedFontset::Member& member : opened.members) {
        const std::string charset = lower_case(member.charset);
        if (!wanted.insert(charset).second) continue;
        rows.push_back({{charset}, {text_of(Message::CHARSET_COVERED), Tone::GOOD}, {member.name}});
    }
    std::vector<std::string> missing;
    for (const std::string& name : opened.missing_charsets) {
        const std::string charset = lower_case(name);
        if (!wanted.insert(charset).second) continue;
        missing.push_back(charset);
        rows.push_back({{charset}, {text_of(Message::CHARSET_MISSING), Tone::BAD}, {""}});
    }
    append_unwanted(rows, set, wanted);
    table.show(rows);
    return opened.is_usable ? "" : joined(missing);
}

std::string text_of_locale() {
    std::string text = "Aa Zz 0123";
    for (const nl_item item : {DAY_1, DAY_7, MON_1, MON_3, MON_12})
        text += std::string(" ") + ::nl_langinfo(item);
    return text;
}

}  // namespace gw
