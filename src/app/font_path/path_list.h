// SPDX-License-Identifier: MIT
//
// The list of the modify font path dialog. It shows the elements alone or, where windows show the running
// server, each one with its state there and with who it comes from.
#pragma once

#include <string>
#include <vector>

#include "app/font_path/edited_path.h"
#include "app/font_path/element_views.h"
#include "app/kit/table_list.h"

#include <X11/Intrinsic.h>

namespace gw {

class PathList {
  public:
    PathList() = default;
    PathList(Widget parent, const char* name, bool is_live);

    [[nodiscard]] Widget widget() const { return list_; }
    /// The selected position; 0 for none.
    [[nodiscard]] int selected() const;

    /// Shows the whole path. Nothing is selected.
    void fill(const EditedPath& path);
    /// The path has changed like this since it was last shown. The element that was moved or added is
    /// selected, and the list's callback called.
    void moved(int from, int to, const EditedPath& path);
    void added(int position, const EditedPath& path);
    /// The selection is the caller's business.
    void erased(int position, const EditedPath& path);

    /// Selects the position, calling the list's callback.
    void select(int position) const;
    /// Asks again for the states of all elements. No callback is called, and the selection stays, unless
    /// `selected` is another position.
    void show_states(const EditedPath& path, int selected = 0);
    /// The state of the element at the position, as it was last shown.
    [[nodiscard]] const ElementView& view(int position) const;

  private:
    void put_at(int position, const std::string& element) const;
    void take_away(int position) const;

    Widget list_ = nullptr;
    bool is_live_ = false;
    TableList table_;
    std::vector<ElementView> views_;
};

}  // namespace gw
