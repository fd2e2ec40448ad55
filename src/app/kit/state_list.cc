// SPDX-License-Identifier: MIT
#include "app/kit/state_list.h"

#include <algorithm>
#include <cstddef>

#include "app/kit/handles.h"
#include "app/kit/lists.h"

#include <Xm/List.h>

namespace gw {

namespace {

XmRenderTable fonts_of(Widget list) {
    XmRenderTable fonts = nullptr;
    XtVaGetValues(list, XmNrenderTable, &fonts, nullptr);
    return fonts;
}

XmText toned(const std::string& text, Tone tone) {
    return XmText(
        XmStringGenerate(name_arg(row_text(text).c_str()), nullptr, XmCHARSET_TEXT, name_arg(tag_of(tone))));
}

int width_of(Widget list, XmString text) {
    return XmStringWidth(fonts_of(list), text);
}

/// Blanks that fill the place up, which is `pixels` wide.
std::string blanks(Widget list, int pixels) {
    const int blank = std::max(1, width_of(list, toned(" ", Tone::PLAIN).get()));
    return std::string(static_cast<std::size_t>(std::max(0, pixels) / blank) + 2, ' ');
}

}  // namespace

void add_tones(Widget list) {
    XmRenderTable table = with_tones(list, fonts_of(list), nullptr);
    XtVaSetValues(list, XmNrenderTable, table, nullptr);
    XmRenderTableFree(table);
}

void fill_state_list(Widget list, const std::vector<StateLine>& lines) {
    constexpr int AT_THE_END = 0;
    int widest = 0;
    for (const StateLine& line : lines)
        widest = std::max(widest, width_of(list, toned(line.state, line.tone).get()));
    XmListDeleteAllItems(list);
    for (const StateLine& line : lines) {
        const XmText state = toned(line.state, line.tone);
        const std::string gap = widest > 0 ? blanks(list, widest - width_of(list, state.get())) : "";
        const XmText rest = toned(gap + line.text, Tone::PLAIN);
        const XmText whole(XmStringConcat(state.get(), rest.get()));
        XmListAddItemUnselected(list, whole.get(), AT_THE_END);
    }
}

}  // namespace gw
