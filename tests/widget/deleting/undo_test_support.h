// SPDX-License-Identifier: MIT
//
// For tests of what brings deleted fonts back: the program with the windows of today, whose font path has the
// directories of the test, so that they are listed again afterwards. Include it last.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/common/warningdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/undo_record.h"
#include "app/samples/installed_list.h"
#include "platform/host_paths.h"
#include "store/trash_policy.h"
#include "support/own_font_dirs.h"

#include "widget/work_test_support.h"

namespace gw::test {

class UndoTest : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        own_path();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
    }
    static const OwnFontPath& own_path() {
        static const OwnFontPath own(home().path());
        return own;
    }
    void TearDown() override {
        set_trash_limits({});
        if (is_managed(wi_warning_dlg)) XtUnmanageChild(wi_warning_dlg);
        WorkTest::TearDown();
        forget_undoable();
        own_path().write({});
        read_font_path();
    }
    static void read_font_path() {
        delete the_font_path;
        the_font_path = new GWFontPath(INSTALLATION_ROOT);
    }
    /// The font path has the directories of the test, behind those that were there.
    void list_own(const std::vector<std::string>& more = {}) {
        std::vector<std::string> dirs = {installed().path()};
        dirs.insert(dirs.end(), more.begin(), more.end());
        own_path().write(dirs);
        read_font_path();
        show_installed({"my-alias"});
    }
    void make_fonts(std::initializer_list<const char*> names) {
        for (const char* name : names) installed().add(std::string(name) + ".pcf", face(name));
        list_own();
    }
    static Widget undo_button() { return find(wi_mainwindow, "_undo_button"); }
    /// Whether the main window lists a font of this name.
    static bool lists(const std::string& name) {
        const std::vector<std::string> rows = items(wi_hrn_list);
        return std::any_of(rows.begin(), rows.end(),
                           [&](const std::string& row) { return row.starts_with(name); });
    }
};

}  // namespace gw::test
