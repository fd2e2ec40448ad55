// SPDX-License-Identifier: MIT
//
// The lower part of the attributes dialog: the file of a font, all its names, and its characters. All texts
// can be copied. The file is looked into while the program is idle, step by step.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/kit/generation.h"
#include "app/samples/char_grid.h"
#include "app/samples/shown_font.h"

#include <Xm/Xm.h>

namespace gw {

class FontDetails {
  public:
    /// Makes the widgets, which fill the form, also when it grows.
    explicit FontDetails(Widget form);
    ~FontDetails();
    FontDetails(const FontDetails&) = delete;
    FontDetails& operator=(const FontDetails&) = delete;

    /// Shows the font. What must be read from its file comes later, while the program is idle. `entry` is the
    /// entry of a list that the font was chosen from; it may be null.
    void show(GWFont& font, const GWHRNElement* entry);
    /// Empties all of it and closes the font's file.
    void clear();
    /// Whether something is still to be read from the font's file.
    [[nodiscard]] bool is_looking() const { return work_ != 0; }

    [[nodiscard]] CharacterGrid& grid() { return *grid_; }

  private:
    // The package manager takes longest to answer.
    enum class Step { SIZE, OPENING, CHARACTERS, PACKAGE, DONE };

    void create_facts(Widget form);
    void create_names(Widget form);
    void create_characters(Widget form);
    void attach_lists();
    [[nodiscard]] std::vector<Widget> fields() const;

    bool take_step();
    void do_step(Step step);
    void show_packages();
    void open_font();
    void show_failure(const Failure& failure);
    void show_character();
    void find_character();
    void copy();

    static FontDetails& of(Widget field);

    Widget file_ = nullptr;
    Widget directory_ = nullptr;
    Widget package_ = nullptr;
    Widget format_ = nullptr;
    Widget size_ = nullptr;
    Widget glyphs_ = nullptr;
    Widget facts_end_ = nullptr;  // the lowest part above the names
    Widget names_label_ = nullptr;
    Widget names_ = nullptr;
    Widget copy_ = nullptr;
    Widget find_label_ = nullptr;
    Widget find_ = nullptr;
    Widget character_ = nullptr;
    std::unique_ptr<CharacterGrid> grid_;

    ShownFont shown_;
    std::optional<FontFace> opened_;  // until its characters are shown
    Step next_ = Step::DONE;
    Generation requests_;
    XtWorkProcId work_ = 0;
};

}  // namespace gw
