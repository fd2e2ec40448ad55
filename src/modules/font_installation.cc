// SPDX-License-Identifier: MIT
#include "modules/font_installation.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "modules/index_access.h"

namespace gw {

namespace {

std::string afm_dir(const GW_FPE& fpe) {
    return std::string(fpe.get_element()) + "afm";
}

}  // namespace

FontInstallation::FontInstallation(GWFont& the_font, GW_FPE& element) : font(the_font), fpe(element) {
    if (const GW_FILE_SPEC* first = first_file(font); first != nullptr)
        line = index_line(font, first->get_name());
}

// The line goes first: a reader never finds one that points nowhere.
FontInstallation::~FontInstallation() {
    if (kept) return;
    if (entered) fpe.get_fontdir_file().take_back_line(line->c_str());
    copies.clear();
    if (made_afm_dir) ::rmdir(afm_dir(fpe).c_str());
}

void FontInstallation::make_afm_dir() {
    made_afm_dir = fpe.make_afm_dir() == 0;
}

bool FontInstallation::accept(NewFile copy, const GW_FILE_SPEC& source, int failure) {
    if (failure != 0) {
        report_left_out(copy.error() != 0 ? copy.get_path() : source.get_path(), std::strerror(failure));
        return false;
    }
    if (copy.changes_a_file() && is_file_of_another(source.get_name(), font, fpe)) {
        report_left_out(copy.get_path(), "this is a file of another font");
        return false;
    }
    copies.push_back(std::move(copy));
    return true;
}

bool FontInstallation::enter_in_index() {
    entered = fpe.get_fontdir_file().append_line(line->c_str()) != 0;
    if (!entered) report_left_out(fpe.get_fontdir_file().get_path(), "the index cannot be written");
    return entered;
}

bool FontInstallation::put_in_place(std::size_t number) {
    for (; placed < number; ++placed) {
        if (copies[placed].put_in_place()) continue;
        report_left_out(copies[placed].get_path(), std::strerror(copies[placed].error()));
        return false;
    }
    return true;
}

void FontInstallation::keep() {
    for (NewFile& copy : copies) copy.keep();
    kept = true;
}

}  // namespace gw
