// SPDX-License-Identifier: MIT
//
// What windows show and do beyond earlier releases. By default every point below is off. The resource
// `gw_modern_windows` switches all points on together. Each place in the code asks for one point.
#pragma once

namespace gw {

class WindowPolicy {
  public:
    constexpr explicit WindowPolicy(bool modern = false) : modern_(modern) {}

    /// Failures are shown in a window, with their reasons, and not only on standard error.
    [[nodiscard]] constexpr bool shows_reasons() const { return modern_; }
    /// A font path from which all directories were deleted is stored empty. Otherwise it is not stored, and
    /// the window shows something else than the file.
    [[nodiscard]] constexpr bool stores_an_empty_path() const { return modern_; }
    /// The package that a font belongs to is shown, and what the package manager does when it is missing.
    [[nodiscard]] constexpr bool shows_packages() const { return modern_; }
    /// The install dialog tells which files of a source are not offered, and why.
    [[nodiscard]] constexpr bool shows_what_is_not_offered() const { return modern_; }
    /// The user is asked before fonts are converted. Otherwise they are converted without a question.
    [[nodiscard]] constexpr bool asks_before_converting() const { return modern_; }
    /// The attributes of a font have its file, all its names and its characters, if the font policy gives
    /// fonts all their names.
    [[nodiscard]] constexpr bool shows_font_details() const { return modern_; }
    /// Samples of outline fonts are drawn at the screen's resolution and in the encoding that the user
    /// chooses, a font without Latin letters shows letters of its own, and an empty sample says why it is
    /// empty.
    [[nodiscard]] constexpr bool explains_samples() const { return modern_; }
    /// There is a window that says why programs do not find a font, with a menu, and a button beside an empty
    /// sample.
    [[nodiscard]] constexpr bool finds_missing_fonts() const { return modern_; }
    /// The font path dialog is there for everybody, and shows what the running server does with each element.
    /// What other programs change is seen at once, there and in the list of fonts.
    [[nodiscard]] constexpr bool shows_live_path() const { return modern_; }
    /// The fontsets dialog is there without a resource and without VANTORHOME, and shows which character sets
    /// of the locale a fontset covers.
    [[nodiscard]] constexpr bool shows_fontset_coverage() const { return modern_; }
    /// A field above a list of fonts filters it, and "Select All" makes "Install" sensitive.
    [[nodiscard]] constexpr bool searches_lists() const { return modern_; }
    /// The question before a deletion names the fonts, their files and the owners of these.
    [[nodiscard]] constexpr bool names_what_is_deleted() const { return modern_; }
    /// What is deleted or replaced goes to the trash of its directory, and the windows bring it back from
    /// there.
    [[nodiscard]] constexpr bool brings_deleted_fonts_back() const { return modern_; }
    /// The conflict dialog shows the installed font beside the new one, names all files that are in the way,
    /// decides about several fonts at once, and sets apart what cannot be decided. It comes at once when
    /// there is something to decide.
    [[nodiscard]] constexpr bool compares_conflicts() const { return modern_; }
    /// One window, when all is decided, tells everything that an installation or a deletion has done.
    [[nodiscard]] constexpr bool sums_work_up() const { return modern_; }
    /// Files and directories can be arguments of the command, and can be dropped on the main window and on
    /// the install dialog.
    [[nodiscard]] constexpr bool takes_given_files() const { return modern_; }
    /// Dialogs are made when they can first be needed, and not before the main window is shown.
    [[nodiscard]] constexpr bool makes_dialogs_later() const { return modern_; }
    /// The server is not asked for what nobody sees (`Looks::spares_requests`).
    [[nodiscard]] constexpr bool spares_requests() const { return modern_; }
    /// Lists and their names are in a scalable fixed-width font of the interface, text fields also in the C
    /// locale, and windows are no larger than the screen.
    [[nodiscard]] constexpr bool scales_with_the_screen() const { return modern_; }
    /// What is chosen, and what cannot be used, is seen at a glance, and numbers stand in columns.
    [[nodiscard]] constexpr bool shows_states_clearly() const { return modern_; }
    /// The help window is closed by its button, Return and Escape, and every help button opens the section of
    /// the manual page that its window belongs to.
    [[nodiscard]] constexpr bool answers_help_buttons() const { return modern_; }
    /// The Cancel button of the dialog for a printer's font path closes it, and so does Escape.
    [[nodiscard]] constexpr bool cancels_printer_path() const { return modern_; }
    /// The manual page is made when the help window is first opened. Otherwise the program's start waits for
    /// it.
    [[nodiscard]] constexpr bool makes_help_when_opened() const { return modern_; }
    /// The directory dialog takes a directory that is typed, and the one that it shows when nothing is
    /// selected. Names in it have no slash too many, and its buttons speak the user's language.
    [[nodiscard]] constexpr bool takes_typed_directories() const { return modern_; }
    /// Messages that count say "1 font", and no message names a program that there is not.
    [[nodiscard]] constexpr bool speaks_in_sentences() const { return modern_; }
    /// What was just installed is selected in the list of installed fonts, and can be seen there. So are
    /// fonts that were in its directory before, when that has come onto the font path.
    [[nodiscard]] constexpr bool shows_what_is_new() const { return modern_; }
    /// The attributes of every entry of a list can be shown, also of the last one.
    [[nodiscard]] constexpr bool shows_attributes_of_all() const { return modern_; }
    /// Windows have their titles in UTF-8 too, so that window managers show letters that are not Latin.
    [[nodiscard]] constexpr bool names_windows_in_utf8() const { return modern_; }
    /// Every button of a window has a letter that presses it with Alt.
    [[nodiscard]] constexpr bool has_keys_for_all_controls() const { return modern_; }
    /// The install dialog offers destinations for the user and for everybody, and asks whether the
    /// destination is put on the font path, for the superuser too.
    [[nodiscard]] constexpr bool offers_destinations() const { return modern_; }
    /// The last sources of fonts are kept between runs, and offered in the install dialog.
    [[nodiscard]] constexpr bool remembers_sources() const { return modern_; }
    /// Work on many fonts counts them and names them, can be cancelled at any time, and asks after a failure
    /// whether it shall go on.
    [[nodiscard]] constexpr bool controls_work() const { return modern_; }

  private:
    bool modern_;
};

/// The policy of the whole program.
[[nodiscard]] WindowPolicy window_policy();
/// Called once at start-up, before any window is made.
void set_window_policy(WindowPolicy policy);

}  // namespace gw
