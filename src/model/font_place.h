// SPDX-License-Identifier: MIT
//
// Whether the user may change fonts, and how large they are. A listing asks a directory's question once for
// all fonts in it, and each file's once.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/gw_fspec_list.h"
#include "core/seen_directory.h"

namespace gw {

class FontPlace {
  public:
    /// `dir` is the directory as the files' specifications have it.
    explicit FontPlace(std::string_view dir) : seen_(std::string(dir)) {}

    [[nodiscard]] SeenDirectory& seen() { return seen_; }

    /// Whether a font of these files cannot be deleted: no file can be made in the directory, or one of them
    /// is missing or cannot be written to.
    bool is_read_only(const GW_FSPEC_LIST& files);
    /// The kilobytes that the files occupy; 0 if one of them was not looked at.
    [[nodiscard]] unsigned known_kilobytes(const GW_FSPEC_LIST& files);

  private:
    enum class Rights { NOT_ASKED, NONE, BY_FILE, ALL };

    Rights rights();
    std::optional<SeenFile> look(const GW_FILE_SPEC& spec);
    bool can_write(const GW_FILE_SPEC& spec);

    SeenDirectory seen_;
    Rights rights_ = Rights::NOT_ASKED;
    // The answer for a file of this user, by device and mode: it is the same for all that have these in
    // common.
    std::map<std::pair<dev_t, mode_t>, bool> own_files_;
};

/// The directories that a listing comes to.
class FontPlaces {
  public:
    FontPlace& at(std::string_view dir) {
        const auto known = places_.find(dir);
        return known != places_.end() ? known->second
                                      : places_.try_emplace(std::string(dir), dir).first->second;
    }

  private:
    std::map<std::string, FontPlace, std::less<>> places_;
};

/// The kilobytes that the files occupy now. Missing files count 0.
unsigned kilobytes_of(const GW_FSPEC_LIST& files);

}  // namespace gw
