// SPDX-License-Identifier: MIT
#include "app/font_path/edited_path.h"

#include <algorithm>
#include <utility>

namespace gw {

EditedPath::EditedPath(std::vector<PathRow> rows) : rows_(std::move(rows)) {}

bool EditedPath::is_editable(int position) const {
    return position >= 1 && position <= count() &&
           rows_[static_cast<std::size_t>(position) - 1].is_editable();
}

int EditedPath::target(int position, int step) const {
    if (!is_editable(position)) return 0;
    int at = position + step;
    if (is_editable(at)) return at;
    // The element leaves one of the user's parts and comes to the near end of the other one.
    const Origin from = rows_[static_cast<std::size_t>(position) - 1].origin;
    if (from != (step < 0 ? Origin::OWN_END : Origin::OWN_FRONT)) return 0;
    const auto is_fixed = [this](int p) {
        return p >= 1 && p <= count() && !is_editable(p) &&
               rows_[static_cast<std::size_t>(p) - 1].origin != Origin::SERVER;
    };
    if (!is_fixed(at)) return 0;
    while (is_fixed(at + step)) at += step;
    return at;
}

std::vector<std::string> EditedPath::elements(Origin origin) const {
    std::vector<std::string> elements;
    for (const PathRow& row : rows_) {
        if (row.origin == origin) elements.push_back(row.element);
    }
    return elements;
}

std::vector<std::string> EditedPath::configured() const {
    std::vector<std::string> elements;
    for (const PathRow& row : rows_) {
        if (row.origin != Origin::SERVER) elements.push_back(row.element);
    }
    return elements;
}

int EditedPath::position_of(const PathRow& row) const {
    const auto found = std::find(rows_.begin(), rows_.end(), row);
    return found != rows_.end() ? static_cast<int>(found - rows_.begin()) + 1 : 0;
}

void EditedPath::move(int position, int target) {
    PathRow moved = row(position);
    if (is_editable(target)) {
        // Each place keeps its origin: the first of two neighbours stays in front.
        std::swap(row(position).element, row(target).element);
        return;
    }
    moved.origin = target < position ? Origin::OWN_FRONT : Origin::OWN_END;
    rows_.erase(rows_.begin() + (position - 1));
    rows_.insert(rows_.begin() + (target - 1), std::move(moved));
}

void EditedPath::erase(int position) {
    rows_.erase(rows_.begin() + (position - 1));
}

int EditedPath::behind_last_configured() const {
    const auto first = std::find_if(rows_.begin(), rows_.end(),
                                    [](const PathRow& row) { return row.origin == Origin::SERVER; });
    return static_cast<int>(first - rows_.begin()) + 1;
}

int EditedPath::add(const std::string& element, Origin origin) {
    const int position = behind_last_configured();
    rows_.insert(rows_.begin() + (position - 1), {element, origin});
    return position;
}

void EditedPath::set_servers(const std::vector<std::string>& elements) {
    std::erase_if(rows_, [](const PathRow& row) { return row.origin == Origin::SERVER; });
    for (const std::string& element : elements) rows_.push_back({element, Origin::SERVER});
}

}  // namespace gw
