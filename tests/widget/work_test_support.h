// SPDX-License-Identifier: MIT
//
// For tests of installing and deleting fonts: private font directories, a main window that lists nothing
// else, and dialogs that are closed at the end. Include it last.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/kit/toolkit.h"
#include "app/program/program_objects.h"
#include "support/temp_dir.h"
#include "widget/dialogs_test_support.h"

namespace gw::test {

/// A directory of bitmap fonts with its index. Only the index gives the fonts different names: the files are
/// copies of one font.
class FontDirectory {
  public:
    /// Adds a font at the end of the index. Its file has at least `kilobytes` kilobytes.
    void add(const std::string& file, const std::string& xlfd, std::size_t kilobytes = 0);
    [[nodiscard]] const std::string& path() const { return dir_.path(); }
    [[nodiscard]] const char* c_str() const { return dir_.c_str(); }
    [[nodiscard]] std::string file(const std::string& name) const { return dir_.file(name); }
    [[nodiscard]] bool exists(const std::string& name) const { return dir_.exists(name); }
    [[nodiscard]] std::string read(const std::string& name) const { return dir_.read(name); }
    /// The bytes of its index.
    [[nodiscard]] std::string index() const { return dir_.read("fonts.dir"); }
    [[nodiscard]] const TempDir& dir() const { return dir_; }

  private:
    TempDir dir_;
    std::vector<std::string> lines_;
};

/// The XLFD name of a Latin-1 face, in one size.
std::string face(const std::string& family, const std::string& decipoints = "120");
/// The name of that face in lists, with "[Read Only]" when `read_only`.
std::string listed(const std::string& family, bool read_only = false);
/// The bytes of an index with these lines.
std::string index_of(std::initializer_list<std::string> lines);

/// Whether the server has a font of that name.
bool server_has(const std::string& xlfd);
/// The elements of the server's font path.
std::vector<std::string> server_font_path();
void set_server_font_path(std::vector<std::string> elements);
bool is_on_server_path(const std::string& directory);

/// Runs `action` as soon as `condition` holds while the program handles events in the middle of its work,
/// like a click that has been waiting. Actions run in the order of these calls.
void act_when(std::function<bool()> condition, std::function<void()> action);
/// Whether every such action has run.
bool all_acted();

/// Runs the action once the condition holds, also while the program waits for an answer.
class When {
  public:
    enum class Often { ONCE, EACH_TIME };
    When(std::function<bool()> condition, std::function<void()> action, Often often = Often::ONCE)
        : condition_(std::move(condition)), action_(std::move(action)), often_(often) {
        look_again();
    }
    ~When() {
        if (id_ != 0) XtRemoveTimeOut(id_);
    }
    When(const When&) = delete;
    When& operator=(const When&) = delete;
    [[nodiscard]] bool has_acted() const { return has_acted_; }

  private:
    void look_again() {
        id_ = XtAppAddTimeOut(
            app, 5,
            [](XtPointer self, XtIntervalId*) {
                auto& when = *static_cast<When*>(self);
                when.id_ = 0;
                if (!when.condition_()) return when.look_again();
                when.has_acted_ = true;
                when.action_();
                if (when.often_ == Often::EACH_TIME) when.look_again();
            },
            this);
    }
    std::function<bool()> condition_;
    std::function<void()> action_;
    Often often_;
    XtIntervalId id_ = 0;
    bool has_acted_ = false;
};

/// Whether the user is asked what to do about a font that has failed.
bool is_asked();
void press_skip_all();
/// As long as this exists, the user skips all fonts that fail.
class SkippingAll {
  private:
    When when_{is_asked, press_skip_all, When::Often::EACH_TIME};
};

/// Selects a position of a single-selection list, as the user does.
void pick(Widget list, int position);

bool is_root();
bool is_sensitive(Widget root, const std::string& name);
std::string label(Widget root, const std::string& name);
std::string main_status();
bool is_managed(Widget dialog);

/// Makes the program act as the superuser or as an ordinary user, as far as only its `uid` decides.
class ActingAs {
  public:
    explicit ActingAs(int user) : before_(uid) { uid = user; }
    ~ActingAs() { uid = before_; }
    ActingAs(const ActingAs&) = delete;
    ActingAs& operator=(const ActingAs&) = delete;

  private:
    int before_;
};

class WorkTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Makes the main window list only the fonts of `installed()` and these aliases; the server has the fonts
    /// too.
    void show_installed(std::initializer_list<std::string> aliases = {});
    FontDirectory& installed() { return installed_; }

    // Opens the dialog as the user does.
    static void open_install_dialog();
    static void choose_source(const FontDirectory& source);
    static void choose_destination(const std::string& directory);
    /// When the next work begins, another program removes the destination, which was found good.
    static void destination_goes_when_work_begins();
    /// Installs these positions of the source and waits for the end of the work.
    static void install(std::initializer_list<int> positions);
    /// Deletes these positions of the main window's list and waits for the end of the work.
    static void remove(std::initializer_list<int> positions);
    static bool wait_for_work();

    static Widget source_list();
    static Widget conflicts_list();
    /// From now on the test answers the question itself what to do about a font that has failed. Otherwise
    /// all such fonts are skipped.
    void answer_questions() { skipping_.reset(); }

  private:
    static void take_off_font_paths();
    /// No source of fonts is chosen, as at the start of the program.
    static void forget_source();
    FontDirectory installed_;
    std::unique_ptr<SkippingAll> skipping_;
};

}  // namespace gw::test
