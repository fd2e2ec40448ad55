// SPDX-License-Identifier: MIT
//
// The cure that makes the index of a directory anew. What somebody has written into the old one stays, as far
// as it is about files that are there.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "diagnosis/cure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

Result<Deed> make_index(const Cure& cure, ServerView& server, const Surroundings& surroundings,
                        const Progress& progress = {});

/// An index as it should be.
struct MadeIndex {
    std::string text;
    int lines = 0;
    std::vector<std::string> left_out;  ///< fonts without a name that an index can have
};

/// The index of the directory: the lines of `old` about files that are there, then the names that mkfontscale
/// and mkfontdir give to the other fonts, but for those that are taken. Fails when a tool cannot be run, or
/// `progress` stops it.
[[nodiscard]] Result<MadeIndex> made_index(const Directory& dir, std::string_view old,
                                           const Progress& progress = {});

/// "fonts.scale" for that index: the lines of `old` about files that are there, and every outline of the
/// index. None where there is no outline and no old one.
[[nodiscard]] std::optional<std::string> made_scalable_index(const Directory& dir,
                                                             const std::optional<std::string>& old,
                                                             std::string_view index);

}  // namespace gw::diagnosis
