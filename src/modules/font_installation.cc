// SPDX-License-Identifier: MIT
#include "modules/font_installation.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "modules/index_access.h"

namespace gw {

namespace {

std::string afm_dir(const GW_FPE& fpe) {
    return std::string(fpe.get_element()) + "afm";
}

Result<std::string> line_of(GWFont& font) {
    const GW_FILE_SPEC* first = first_file(font);
    if (first == nullptr) return Failure{font.get_hrn_name(), Reason::NO_FILE};
    return index_line(font, first->get_name());
}

}  // namespace

FontInstallation::FontInstallation(GWFont& the_font, GW_FPE& element)
    : font(the_font), fpe(element), line(line_of(the_font)) {}

// The line is removed first, so that no reader finds a line without its file.
FontInstallation::~FontInstallation() {
    if (kept) return;
    if (entered) tell_unless_done(fpe.get_fontdir_file().withdraw(line->c_str()).with(Sequel::LINE_REMAINS));
    copies.clear();
    if (made_afm_dir) ::rmdir(afm_dir(fpe).c_str());
}

Outcome FontInstallation::can_begin() const {
    return line ? done() : Outcome(line.failure());
}

void FontInstallation::make_afm_dir() {
    made_afm_dir = fpe.make_afm_dir() == 0;
    const int error = errno;
    if (!made_afm_dir && error != EEXIST) metrics_dir = Failure::of_system(afm_dir(fpe), error);
}

Outcome FontInstallation::accept(NewFile copy, const GW_FILE_SPEC& source) {
    if (copy.changes_a_file() && is_file_of_another(source.get_name(), font, fpe))
        return Failure{copy.path(), Reason::FILE_OF_ANOTHER_FONT};
    copies.push_back(std::move(copy));
    return done();
}

Outcome FontInstallation::enter_in_index() {
    Outcome outcome = fpe.get_fontdir_file().enter(line->c_str());
    entered = static_cast<bool>(outcome);
    return outcome;
}

Outcome FontInstallation::put_in_place(std::size_t number) {
    for (; placed < number; ++placed) {
        if (Outcome outcome = copies[placed].put_in_place(); !outcome) return outcome;
    }
    return done();
}

void FontInstallation::keep() {
    for (NewFile& copy : copies) copy.keep();
    kept = true;
}

}  // namespace gw
