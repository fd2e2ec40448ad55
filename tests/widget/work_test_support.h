// SPDX-License-Identifier: MIT
//
// Tests of installing and deleting fonts: directories of fonts of the test's own, a main window that lists
// nothing else, and the dialogs put away again. To be included last.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "app/program/program_objects.h"
#include "support/temp_dir.h"
#include "widget/dialogs_test_support.h"

namespace gw::test {

/// A directory of bitmap fonts with its index. Which names the fonts have is the index's business: the files
/// are copies of one font.
class FontDirectory {
  public:
    /// Puts a font there, at the end of the index. Its file has at least so many kilobytes.
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
/// What lists call that face; with "[Read Only]" when `read_only`.
std::string listed(const std::string& family, bool read_only = false);
/// The bytes of an index with these lines.
std::string index_of(std::initializer_list<std::string> lines);

/// Whether the server has a font of that name.
bool server_has(const std::string& xlfd);
/// The elements of the server's font path.
std::vector<std::string> server_font_path();
bool is_on_server_path(const std::string& directory);

/// Has `action` run as soon as `condition` holds where the program handles events in the middle of its work:
/// what a click does that has been waiting. Waits for its turn after the one before it.
void act_when(std::function<bool()> condition, std::function<void()> action);
/// Whether every such action has run.
bool all_acted();

/// Selects that position of a list of which one item can be selected, as the user does.
void pick(Widget list, int position);

bool is_root();
bool is_sensitive(Widget root, const std::string& name);
std::string label(Widget root, const std::string& name);
std::string main_status();
bool is_managed(Widget dialog);

/// Runs as the superuser or as an ordinary user does where only the program's `uid` decides.
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

    /// The main window lists the fonts of `installed()` alone, and these aliases, and the server has them.
    void show_installed(std::initializer_list<std::string> aliases = {});
    FontDirectory& installed() { return installed_; }

    // What the user does.
    static void open_install_dialog();
    static void choose_source(const FontDirectory& source);
    static void choose_destination(const std::string& directory);
    /// Has those of the source installed, up to the end of the work.
    static void install(std::initializer_list<int> positions);
    /// Has those of the main window's list deleted, up to the end of the work.
    static void remove(std::initializer_list<int> positions);
    static bool wait_for_work();

    static Widget source_list();
    static Widget conflicts_list();

  private:
    static void take_off_font_paths();
    FontDirectory installed_;
};

}  // namespace gw::test
