// SPDX-License-Identifier: MIT
//
// A field above a list of fonts: while the user types, only the rows stay that have all words.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/kit/row_filter.h"
#include "model/font_search.h"

#include <X11/Intrinsic.h>

namespace gw {

class ListSearch {
  public:
    /// What can be chosen besides words.
    struct Choices {
        bool aliases = false;  ///< the list has aliases
        bool scope = false;    ///< the list has fonts of the user's own, and fonts of everyone
    };
    struct Source {
        /// What is known of each row of the list.
        std::function<std::vector<SearchedRow>()> rows;
        /// Whether fonts of the directory are the user's own. May be null without `Choices::scope`.
        std::function<bool(const std::string& directory)> is_own = nullptr;
    };

    ListSearch() = default;
    ListSearch(const ListSearch&) = delete;
    ListSearch& operator=(const ListSearch&) = delete;

    /// Makes the controls below `above` in a form, `side` pixels from its left side, and returns the lowest
    /// of them. They come before what is made later when the user goes through the window with the Tab key.
    Widget create(Widget form, Widget above, int side, Choices choices);
    /// Searches this list from now on. The list has no callbacks yet.
    void attach(Widget list, Source source);

    /// Whether the row is shown.
    [[nodiscard]] bool shows(int position) const { return filter_ == nullptr || filter_->is_shown(position); }
    /// Shows all rows again, and clears the field.
    void clear();

  private:
    static void typed_cb(Widget field, XtPointer search, XtPointer);
    static void key_in_field(Widget field, XtPointer search, XEvent* event, Boolean* goes_on);
    static void key_in_list(Widget list, XtPointer search, XEvent* event, Boolean* goes_on);
    void create_toggles(Widget form, Choices choices);
    Widget add_toggle(const char* name, const std::string& text);
    [[nodiscard]] std::vector<bool> wanted(bool are_new);
    [[nodiscard]] bool is_wanted(const SearchedRow& row, const FontSearch& search) const;
    [[nodiscard]] bool is_in_scope(const SearchedRow& row) const;
    void show_count();

    Widget field_ = nullptr;
    Widget count_ = nullptr;
    Widget toggles_ = nullptr;
    Widget list_ = nullptr;
    std::array<Widget, SEARCHED_FORMATS> formats_ = {};  ///< null for what cannot be chosen
    Widget own_ = nullptr;
    Widget everyones_ = nullptr;

    Source source_;
    std::vector<SearchedRow> rows_;
    bool are_rows_known_ = false;
    std::unique_ptr<RowFilter> filter_;
};

}  // namespace gw
