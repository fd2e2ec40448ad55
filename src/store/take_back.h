// SPDX-License-Identifier: MIT
//
// Taking back what a journal describes. Every step may have been done already, or never begun.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "store/journal.h"
#include "store/own_directory.h"

namespace gw {

/// A file that a journal names: the directory that it is in, and its name there.
class PlaceBelow {
  public:
    static Result<PlaceBelow> of(const Directory& fonts, const std::string& name);
    [[nodiscard]] const Directory& dir() const { return metrics_ ? *metrics_ : *fonts_; }
    [[nodiscard]] const std::string& name() const { return name_; }
    /// Moves the file; 0 or the `errno`.
    [[nodiscard]] int rename_to(const Directory& dir, const std::string& name) const;

  private:
    PlaceBelow(const Directory& fonts, std::string name) : fonts_(&fonts), name_(std::move(name)) {}
    const Directory* fonts_;
    std::optional<Directory> metrics_;
    std::string name_;
};

/// Takes back the records, the last one first. After a failure it can be tried again.
Outcome take_back(const Directory& fonts, const OwnDirectory& own,
                  const std::vector<journal::Record>& records);

/// Takes back a change that did not come to its end, if there is a journal of one, and removes what it has
/// left. One that was final together with that of another directory stays.
Outcome recover(const Directory& fonts, const OwnDirectory& own);

}  // namespace gw
