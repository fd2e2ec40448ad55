// SPDX-License-Identifier: MIT
//
// A font path while it is edited: which elements it has, in the order in which programs ask them, who each
// one comes from, and which ones this user may move or delete. It knows no widgets, and writes nothing.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace gw {

/// Who an element comes from.
enum class Origin {
    EDITED,     ///< the path that the superuser edits
    OWN_FRONT,  ///< the user's file, in front of everything else
    LOCALE,
    HOST,
    INSTALLATION,
    DESKTOP,
    OWN_END,  ///< the user's file, behind everything else
    SERVER,   ///< the running server has it; it is not configured
};

struct PathRow {
    std::string element;
    Origin origin = Origin::EDITED;

    [[nodiscard]] bool is_editable() const {
        return origin == Origin::EDITED || origin == Origin::OWN_FRONT || origin == Origin::OWN_END;
    }
    bool operator==(const PathRow&) const = default;
};

/// Positions are 1-based, as in a list widget.
class EditedPath {
  public:
    EditedPath() = default;
    explicit EditedPath(std::vector<PathRow> rows);

    [[nodiscard]] const std::vector<PathRow>& rows() const { return rows_; }
    [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
    /// False for a position where nothing is.
    [[nodiscard]] bool is_editable(int position) const;
    /// Where the element at the position comes when it moves by `step`, -1 or 1; 0 when it cannot. A user's
    /// element passes those of the host, the installation and the locale all at once.
    [[nodiscard]] int target(int position, int step) const;
    /// The elements of one origin, in order.
    [[nodiscard]] std::vector<std::string> elements(Origin origin) const;
    /// The configured elements, in order.
    [[nodiscard]] std::vector<std::string> configured() const;
    /// The position of this row; 0 when it is not there.
    [[nodiscard]] int position_of(const PathRow& row) const;

    /// Moves the element to what `target` has returned.
    void move(int position, int target);
    void erase(int position);
    /// Adds it behind the last element of this user, and returns its position.
    int add(const std::string& element, Origin origin);
    /// Replaces the elements that only the running server has.
    void set_servers(const std::vector<std::string>& elements);

  private:
    [[nodiscard]] PathRow& row(int position) { return rows_[static_cast<std::size_t>(position) - 1]; }
    [[nodiscard]] int behind_last_configured() const;

    std::vector<PathRow> rows_;
};

}  // namespace gw
