// SPDX-License-Identifier: MIT
//
// Conflicts for tests: made-up ones, and the words of the dialogs about them. Include it last.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/installing/installdlg.h"
#include "app/program/program_objects.h"
#include "support/font_maker.h"

#include "widget/work_test_support.h"

namespace gw::test {

/// Adds a conflict with these reasons; its font does not exist on the disk.
inline void add_conflict(GWConflict::TYPE type, const std::string& family,
                         std::initializer_list<GWConflict::INFO> reasons) {
    const auto named = [&] { return make_font(GWFont::BITMAP_FONT, face(family)); };
    const Ref<GWHRNElement> element(new GWHRNElement(named()));
    const Ref<GWHRNElement> other(new GWHRNElement(named()));
    GWFont* in_the_way = other->get_representative();
    in_the_way->set_dir_name("/fonts/in/the/way/");
    const bool installs = type == GWConflict::INSTALL;
    auto* conflict = new GWConflict(type, element.get(), nullptr, installs ? other.get() : nullptr,
                                    installs ? "/nonexistent/" : nullptr, nullptr);
    for (const GWConflict::INFO reason : reasons) conflict->set_conflict(reason, in_the_way, 0, 0);
    the_conflict_list.append(conflict);
}

class ConflictTest : public WorkTest {
  protected:
    static std::string summary(const std::string& name) { return label(wi_preconflict_dlg, name); }
    static std::string resolve(const std::string& name) { return label(wi_conflict_dlg, name); }
    static bool can_resolve() {
        const bool keep = is_sensitive(wi_conflict_dlg, "keep_button");
        EXPECT_EQ(is_sensitive(wi_conflict_dlg, "not_keep_button"), keep);
        return keep;
    }
    static bool keep() { return press(find(wi_conflict_dlg, "keep_button")); }
    static bool force() { return press(find(wi_conflict_dlg, "not_keep_button")); }
    static bool finish() { return press(find(wi_conflict_dlg, "ok_button")); }
    static bool choose_resolutions() { return press(find(wi_preconflict_dlg, "resolve_button")); }

    static std::string destination() { return home().file("glyphwd_fonts/"); }
    static std::string destination_index() { return home().read("glyphwd_fonts/fonts.dir"); }
    /// Installs the fonts `names`, and offers the same fonts in the source.
    void make_conflicts(std::initializer_list<std::string> names) {
        for (const std::string& name : names) {
            installed().add("old-" + name + ".pcf", face(name));
            fonts_.add(name + ".pcf", face(name), 500);
        }
        show_installed({"my-alias"});
    }
    /// Installs all fonts of the source.
    void install_source() {
        choose_source(fonts_);
        press(find(wi_install_dlg, "_select_all_button"));
        choose_destination(destination());
        ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
        ASSERT_TRUE(wait_for_work());
    }
    FontDirectory fonts_;
};

}  // namespace gw::test
