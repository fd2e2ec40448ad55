// SPDX-License-Identifier: MIT
//
// One installation of a font into a directory: all of it is done or nothing. The files are copied aside
// first, which is what takes long and may fail; then a module has the index line and the files appear in its
// own order.
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
    /// Takes everything back unless `keep` was called.
    ~FontInstallation();
    FontInstallation(const FontInstallation&) = delete;
    FontInstallation& operator=(const FontInstallation&) = delete;

    /// Whether the font has files and a line for the index. Nothing is written for one that has not.
    [[nodiscard]] Outcome can_begin() const;
    /// Makes the element's subdirectory for metrics unless it is there. Fonts without metrics do without it.
    void make_afm_dir();
    /// Copies the font's files aside, each by `File`'s `copy_into`; those that lie in the element's directory
    /// already need no copy. A failure when one could not be copied whole, or would overwrite a file that the
    /// index knows as another font's.
    template <class File>
    Outcome copy_files();
    Outcome enter_in_index();
    /// Gives the first file's copy its name; `put_all_in_place` those that have not got theirs yet.
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
    Outcome metrics_dir;  // why the subdirectory for metrics could not be made
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
