// SPDX-License-Identifier: MIT
//
// One installation of a font into a directory: all of it is done or nothing. The files are copied aside
// first, which is what takes long and may fail; then a module has the index line and the files appear in its
// own order. What goes wrong is said in one line on standard error.
#pragma once

#include <optional>
#include <string>
#include <vector>

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
    [[nodiscard]] bool can_begin() const { return line.has_value(); }
    /// Makes the element's subdirectory for metrics unless it is there.
    void make_afm_dir();
    /// Copies the font's files aside, each by `File`'s `copy_into`; those that lie in the element's directory
    /// already need no copy. False when one could not be copied whole, or would overwrite a file that the
    /// index knows as another font's.
    template <class File>
    [[nodiscard]] bool copy_files();
    [[nodiscard]] bool enter_in_index();
    /// Gives the first file's copy its name; `put_all_in_place` those that have not got theirs yet.
    [[nodiscard]] bool put_first_in_place() { return put_in_place(first_is_copied ? 1 : 0); }
    [[nodiscard]] bool put_all_in_place() { return put_in_place(copies.size()); }
    void keep();

  private:
    [[nodiscard]] bool accept(NewFile copy, const GW_FILE_SPEC& source, int failure);
    [[nodiscard]] bool put_in_place(std::size_t number);

    GWFont& font;
    GW_FPE& fpe;
    std::optional<std::string> line;
    std::vector<NewFile> copies;
    std::size_t placed = 0;
    bool first_is_copied = false;
    bool made_afm_dir = false;
    bool entered = false;
    bool kept = false;
};

template <class File>
bool FontInstallation::copy_files() {
    const GW_FSPEC_LIST& files = *font.get_font_file_list();
    first_is_copied = !(*files.begin())->is_in_directory(fpe.get_element());
    for (const GW_FILE_SPEC* spec : files) {
        if (spec->is_in_directory(fpe.get_element())) continue;
        NewFile copy(std::string(fpe.get_path()) + spec->get_name());
        const int failure = copy.error() != 0 ? copy.error() : File(spec).copy_into(copy);
        if (!accept(std::move(copy), *spec, failure)) return false;
    }
    return true;
}

}  // namespace gw
