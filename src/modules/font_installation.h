// SPDX-License-Identifier: MIT
//
// The steps of installing a font that all modules share, within a change of the directory. What a failed step
// leaves behind, the change takes back.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/failure.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_font.h"
#include "store/directory_change.h"

namespace gw {

class FontInstallation {
  public:
    /// Nothing here is owned; all must outlive this.
    FontInstallation(GWFont& font, GW_FPE& fpe, DirectoryChange& change);
    FontInstallation(const FontInstallation&) = delete;
    FontInstallation& operator=(const FontInstallation&) = delete;

    /// Makes the element's subdirectory for metrics unless it exists. Fonts without metrics do not need it.
    void make_afm_dir();
    /// Copies the font's files, each with `copy_into` of a `File`. Files that are in the element's directory
    /// already are not copied. Fails when a file cannot be copied completely, or would overwrite a file that
    /// the index lists for another font.
    template <class File>
    Outcome copy_files();
    /// Copies `source` under that name with `copy_into` of a `File`.
    template <class File>
    Outcome copy_from(const GW_FILE_SPEC& source, const std::string& name);
    /// Enters the font in the index with all its names, and gives the copies their names.
    Outcome finish();

  private:
    template <class File>
    Outcome copy_file(const GW_FILE_SPEC& spec);
    Outcome accept(DirectoryChange::StagedFile copy);

    GWFont& font;
    GW_FPE& fpe;
    DirectoryChange& change;
    std::vector<DirectoryChange::StagedFile> copies;
    Outcome metrics_dir;  // whether the subdirectory for metrics could be made
};

/// Installs the font into the element: `steps` copies the files, and all of it is one change.
Outcome install_in_change(GWFont& font, GW_FPE& fpe,
                          const std::function<Outcome(FontInstallation&, const DirectoryChange&)>& steps);

template <class File>
Outcome FontInstallation::copy_files() {
    for (const GW_FILE_SPEC* spec : *font.get_font_file_list()) {
        const bool keeps_its_name = font.name_in_copy(*spec) == spec->get_name();
        if (keeps_its_name && spec->is_in_directory(fpe.get_element())) continue;
        if (Outcome copied = copy_file<File>(*spec); !copied) return copied;
    }
    return done();
}

template <class File>
Outcome FontInstallation::copy_file(const GW_FILE_SPEC& spec) {
    return copy_from<File>(spec, font.name_in_copy(spec));
}

template <class File>
Outcome FontInstallation::copy_from(const GW_FILE_SPEC& source, const std::string& name) {
    // That the directory is missing is not why: it could not be made.
    if (!metrics_dir && name.find('/') != std::string::npos) return metrics_dir;
    Result<DirectoryChange::StagedFile> copy = change.stage(name);
    if (!copy) return copy.failure();
    if (Outcome copied = File(&source).copy_into(*copy); !copied) return copied;
    return accept(std::move(*copy));
}

}  // namespace gw
