// SPDX-License-Identifier: MIT
#include "app/font_path/path_list.h"

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "core/text.h"

#include <Xm/List.h>

namespace gw {

namespace {

constexpr int VISIBLE_ELEMENTS = 10;
constexpr std::size_t ELEMENT_LENGTH = 50;  // characters that fit into the list when the dialog appears
constexpr std::size_t ROW_LENGTH = 80;

std::string origin_in_words(Origin origin) {
    switch (origin) {
        case Origin::OWN_FRONT:
            return text_of(Message::ORIGIN_OWN_FRONT);
        case Origin::LOCALE:
            return text_of(Message::ORIGIN_LOCALE);
        case Origin::HOST:
            return text_of(Message::ORIGIN_HOST);
        case Origin::INSTALLATION:
            return text_of(Message::ORIGIN_INSTALLATION);
        case Origin::DESKTOP:
            return text_of(Message::ORIGIN_DESKTOP);
        case Origin::OWN_END:
            return text_of(Message::ORIGIN_OWN_END);
        case Origin::SERVER:
            return text_of(Message::ORIGIN_SERVER);
        case Origin::EDITED:
            break;
    }
    return "";
}

bool has_origins(const EditedPath& path) {
    for (const PathRow& row : path.rows()) {
        if (row.origin != Origin::EDITED) return true;
    }
    return false;
}

}  // namespace

PathList::PathList(Widget parent, const char* name, bool is_live)
    : list_(scrolled_list(parent, name)), is_live_(is_live) {
    XtVaSetValues(list_, XmNselectionPolicy, XmSINGLE_SELECT, XmNvisibleItemCount, VISIBLE_ELEMENTS, nullptr);
    if (is_live) table_ = TableList(list_);
    set_list_columns(list_, is_live ? ROW_LENGTH : ELEMENT_LENGTH);
}

int PathList::selected() const {
    return selected_position(list_);
}

void PathList::fill(const EditedPath& path) {
    if (is_live_) {
        XmListDeselectAllItems(list_);
        return show_states(path);
    }
    std::vector<std::string> lines;
    for (const PathRow& row : path.rows()) lines.push_back(row.element);
    fill_list(list_, lines);
}

void PathList::put_at(int position, const std::string& element) const {
    const XmText item = xm_text(escaped(element));
    XmListAddItemUnselected(list_, item.get(), position);
    select(position);
}

void PathList::take_away(int position) const {
    XmListDeletePos(list_, position);
}

void PathList::select(int position) const {
    XmListSelectPos(list_, position, True);
    show_position(list_, position);
}

void PathList::moved(int from, int to, const EditedPath& path) {
    if (is_live_) {
        show_states(path, to);
        return select(to);
    }
    take_away(from);
    put_at(to, path.rows()[static_cast<std::size_t>(to) - 1].element);
}

void PathList::added(int position, const EditedPath& path) {
    if (is_live_) {
        show_states(path, position);
        return select(position);
    }
    put_at(position, path.rows()[static_cast<std::size_t>(position) - 1].element);
}

void PathList::erased(int position, const EditedPath& path) {
    if (!is_live_) return take_away(position);
    XmListDeselectAllItems(list_);
    show_states(path);
}

void PathList::show_states(const EditedPath& path, int selected) {
    std::vector<std::string> elements;
    for (const PathRow& row : path.rows()) elements.push_back(row.element);
    views_ = element_views(elements);
    const bool with_origins = has_origins(path);
    std::vector<TableRow> rows;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        TableRow row = {{text_of(views_[i].state), views_[i].tone}};
        if (with_origins) row.push_back({origin_in_words(path.rows()[i].origin)});
        row.push_back({elements[i]});
        rows.push_back(std::move(row));
    }
    table_.show(rows, selected);
}

const ElementView& PathList::view(int position) const {
    static const ElementView NONE;
    const auto at = static_cast<std::size_t>(position);
    return position >= 1 && at <= views_.size() ? views_[at - 1] : NONE;
}

}  // namespace gw
