// SPDX-License-Identifier: MIT
//
// One installation of a font into a directory, which is done completely or not at all. First the files are
// copied under hidden names, which takes long and may fail. Then the index line and the files get their
// places, in an order that the module chooses.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/failure.h"
#include "core/new_file.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_font.h"

namespace gw {

class FontInstallation {
  public:
    /// Neither font nor element is owned; both must outlive this.
    FontInstallation(GWFont& font, GW_FPE& fpe);
    /// Undoes everything unless `keep` was called.
    ~FontInstallation();
    FontInstallation(const FontInstallation&) = delete;
    FontInstallation& operator=(const FontInstallation&) = delete;

    /// Whether the font has files and a line for the index. Nothing is written for a font that has not.
    [[nodiscard]] Outcome can_begin() const;
    /// Makes the element's subdirectory for metrics unless it exists. Fonts without metrics do not need it.
    void make_afm_dir();
    /// Copies the font's files under hidden names, each with `copy_into` of a `File`. Files that are in the
    /// element's directory already are not copied. Fails when a file cannot be copied completely, or would
    /// overwrite a file that the index lists for another font.
    template <class File>
    Outcome copy_files();
    Outcome enter_in_index();
    /// Gives the copy of the first file its name; `put_all_in_place` gives the remaining copies theirs.
    Outcome put_first_in_place() { return put_in_place(first_is_copied ? 1 : 0); }
    Outcome put_all_in_place() { return put_in_place(copies.size()); }
    void keep();

  private:
    template <class File>
    Outcome copy_file(const GW_FILE_SPEC& spec);
    Outcome accept(NewFile copy, const GW_FILE_SPEC& source);
    Outcome put_in_place(std::size_t number);

    GWFont& font;
    GW_FPE& fpe;
    Result<std::string> line;
    std::vector<NewFile> copies;
    std::size_t placed = 0;
    bool first_is_copied = false;
    Outcome metrics_dir;  // whether the subdirectory for metrics could be made
    bool made_afm_dir = false;
    bool entered = false;
    bool kept = false;
};

template <class File>
Outcome FontInstallation::copy_files() {
    const GW_FSPEC_LIST& files = *font.get_font_file_list();
    first_is_copied = !(*files.begin())->is_in_directory(fpe.get_element());
    for (const GW_FILE_SPEC* spec : files) {
        if (spec->is_in_directory(fpe.get_element())) continue;
        if (Outcome copied = copy_file<File>(*spec); !copied) return copied;
    }
    return done();
}

template <class File>
Outcome FontInstallation::copy_file(const GW_FILE_SPEC& spec) {
    const std::string name(spec.get_name());
    // That the directory is missing is not why: it could not be made.
    if (!metrics_dir && name.find('/') != std::string::npos) return metrics_dir;
    NewFile copy(std::string(fpe.get_path()) + name);
    if (Outcome begun = copy.outcome(); !begun) return begun;
    if (Outcome copied = File(&spec).copy_into(copy); !copied) return copied;
    return accept(std::move(copy), spec);
}

}  // namespace gw
