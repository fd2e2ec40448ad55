// SPDX-License-Identifier: MIT
//
// A user who does random things in the program's windows, and knows what they must leave: on the disk, in the
// list, on the server, in the font path.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "soak/font_model.h"
#include "soak/random.h"
#include "soak/source_directory.h"
#include "soak/texts.h"
#include "support/temp_dir.h"

#include <X11/Intrinsic.h>

namespace gw::soak {

class User {
  public:
    explicit User(int seed);

    /// Does something that the random numbers choose.
    void act();
    /// How the program or the disk differs from what must be; empty when it does not.
    [[nodiscard]] Texts differences() const;
    [[nodiscard]] const Texts& actions() const { return actions_; }
    /// The bytes that this test itself needs for its notes.
    [[nodiscard]] std::size_t bytes_of_notes() const;
    /// Deletes the fonts and fontsets and chooses the first source, so that memory can be compared.
    void come_to_rest();

  private:
    static constexpr int NUMBER_OF_SOURCES = 4;
    static constexpr const char* FONTSETS = "lib/locale/C/VT_FONT_SETS/Vantor.fs";  // below the installation

    void note(const std::string& action) { actions_.push_back(action); }
    void expect(bool fine, const std::string& what) {
        if (!fine) wrong_.push_back(what);
    }

    void prepare_font_path();
    void choose_source();
    void choose_source(int number);
    void choose_destination();
    /// The names that the install window offers, without what is said behind them.
    [[nodiscard]] static Texts names_offered();
    void install();
    void remove();
    void remove_at(const std::vector<int>& positions);
    void look_around();
    void pick_anything();
    void show_attributes();
    void open_and_close();
    [[nodiscard]] Texts shown_path() const;
    void edit_font_path();
    void edit_once(Texts& shown);
    void change_sample_text();
    void edit_fontsets();
    void change_aliases();
    void list_again();

    struct Pending {
        Font font;
        std::string directory;
    };
    void decide(int done, const std::vector<Pending>& conflicts);
    void resolve(int done, const std::vector<Pending>& conflicts);
    void expect_status(int count, const char* what);

    static void select(Widget list, const std::vector<int>& positions);
    [[nodiscard]] static std::set<std::string> names_on_server();
    [[nodiscard]] Texts listed() const;
    [[nodiscard]] static std::vector<int> our_positions();
    [[nodiscard]] std::string stored_path() const;
    void add_differences_on_server(Texts& found) const;
    void add_differences_in_files(Texts& found) const;

    Random random_;
    bool modern_fonts_;
    bool modern_windows_;
    Texts destinations_;
    std::vector<SourceDirectory> sources_{NUMBER_OF_SOURCES};
    std::vector<gw::test::TempDir> more_elements_{3};
    gw::test::TempDir installation_;
    FontModel model_;
    Texts path_;     // of the superuser
    Texts aliases_;  // as the program has listed them
    int source_ = -1;
    std::string destination_;
    std::string kept_text_;  // of .glyphwdrc
    Texts actions_;
    Texts wrong_;  // seen in the middle of an action
};

}  // namespace gw::soak
