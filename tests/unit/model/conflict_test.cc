// SPDX-License-Identifier: MIT
#include "model/gw_conflict.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "model/gw_alias.h"
#include "modules/gw_pcf_fsm.h"
#include "support/heard_failures.h"
#include "support/small_disk.h"
#include "unit/model/model_test_support.h"

namespace {

using gw::Ref;
using gw::test::make_font;
using gw::test::make_read_only_font;
using gw::test::names_of;
using gw::test::place;
using gw::test::RecordingModules;
using gw::test::TempDir;
using gw::test::Xlfd;
using testing::ElementsAre;

constexpr GWConflict::INFO ALL_REASONS[] = {GWConflict::READ_ONLY, GWConflict::SYSTEM_FONT,
                                            GWConflict::PACKAGE, GWConflict::SAME_NAME, GWConflict::ALIAS};

TEST(Conflict, HasFixedCodes) {
    EXPECT_EQ(GWConflict::INSTALL, 1);
    EXPECT_EQ(GWConflict::DELETE, 2);
    EXPECT_EQ(GWConflict::READ_ONLY, 11);
    EXPECT_EQ(GWConflict::SYSTEM_FONT, 12);
    EXPECT_EQ(GWConflict::PACKAGE, 13);
    EXPECT_EQ(GWConflict::SAME_NAME, 14);
    EXPECT_EQ(GWConflict::ALIAS, 15);
}

TEST(Conflict, HasNoReasonWhenNew) {
    const GWConflict conflict(GWConflict::INSTALL, nullptr, nullptr, nullptr, nullptr, nullptr);
    for (const GWConflict::INFO info : ALL_REASONS) EXPECT_EQ(conflict.is_conflict(info), 0) << info;
    EXPECT_EQ(conflict.get_conflict_dir_name(), "");
}

TEST(Conflict, SetsEachReasonAlone) {
    for (const GWConflict::INFO set : ALL_REASONS) {
        GWConflict conflict(GWConflict::DELETE, nullptr, nullptr, nullptr, nullptr, nullptr);
        conflict.set_conflict(set, nullptr, 0, 0);
        for (const GWConflict::INFO info : ALL_REASONS) {
            EXPECT_EQ(conflict.is_conflict(info), info == set ? 1 : 0) << set << ' ' << info;
        }
    }
}

TEST(Conflict, CanBeDecidedUnlessItIsAboutAnAliasOrAReadOnlyFont) {
    for (const GWConflict::INFO info : ALL_REASONS) {
        GWConflict conflict(GWConflict::INSTALL, nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_TRUE(conflict.can_be_decided());
        conflict.set_conflict(info, nullptr, 0, 0);
        EXPECT_EQ(conflict.can_be_decided(), info != GWConflict::READ_ONLY && info != GWConflict::ALIAS)
            << info;
    }
}

TEST(Conflict, ComparesTheInstalledFontWithTheOneThatWouldTakeItsPlace) {
    const Ref<GWFont> fresh = make_font(Xlfd{});
    const Ref<GWFont> larger = make_font(Xlfd{.decipoints = "140"});
    const Ref<GWHRNElement> element(new GWHRNElement(fresh.get()));
    element->add_font(larger.get(), 1);
    const Ref<GWFont> old = make_font(Xlfd{.decipoints = "140"});
    const Ref<GWHRNElement> other(new GWHRNElement(old.get()));

    GWConflict installing(GWConflict::INSTALL, element.get(), nullptr, other.get(), "/to/", nullptr);
    EXPECT_EQ(installing.get_compared_fonts().installed, nullptr) << "nothing is in the way yet";
    EXPECT_EQ(installing.get_compared_fonts().offered, fresh.get());
    installing.set_conflict(GWConflict::SAME_NAME, old.get(), 1, 0);
    EXPECT_EQ(installing.get_compared_fonts().installed, old.get());
    EXPECT_EQ(installing.get_compared_fonts().offered, larger.get());

    const GWConflict deleting(GWConflict::DELETE, element.get(), nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(deleting.get_compared_fonts().installed, fresh.get());
    EXPECT_EQ(deleting.get_compared_fonts().offered, nullptr);
}

TEST(Conflict, ComparesNothingWhereThereIsNoSuchFont) {
    GWAlias alias("my-alias", Xlfd{}.str().c_str(), "/fonts/");
    const GWConflict of_alias(GWConflict::DELETE, nullptr, &alias, nullptr, nullptr, nullptr);
    EXPECT_EQ(of_alias.get_compared_fonts().installed, nullptr);
    const Ref<GWHRNElement> element(new GWHRNElement(make_font(Xlfd{}).get()));
    const Ref<GWFont> old = make_font(Xlfd{});
    GWConflict beyond(GWConflict::INSTALL, element.get(), nullptr, nullptr, "/to/", nullptr);
    beyond.set_conflict(GWConflict::SAME_NAME, old.get(), 7, 7);
    EXPECT_EQ(beyond.get_compared_fonts().installed, nullptr);
}

// The fonts of one conflict may share packages.
TEST(Conflict, NamesEachPackageOnce) {
    GWConflict conflict(GWConflict::DELETE, nullptr, nullptr, nullptr, nullptr, nullptr);
    conflict.add_packages({});
    EXPECT_EQ(conflict.is_conflict(GWConflict::PACKAGE), 0);
    conflict.add_packages({"b", "a"});
    conflict.add_packages({"a"});
    EXPECT_EQ(conflict.is_conflict(GWConflict::PACKAGE), 1);
    EXPECT_EQ(conflict.get_packages(), "a, b");
}

TEST(Conflict, IgnoresOtherReasons) {
    const Ref<GWFont> font = make_font("fixed");
    font->set_dir_name("/old/");
    for (const int other : {0, 8, 9, 10}) {
        const auto info = static_cast<GWConflict::INFO>(other);
        GWConflict conflict(GWConflict::INSTALL, nullptr, nullptr, nullptr, nullptr, nullptr);
        conflict.set_conflict(info, font.get(), 0, 0);
        EXPECT_EQ(conflict.is_conflict(info), 0) << other;
        for (const GWConflict::INFO known : ALL_REASONS) EXPECT_EQ(conflict.is_conflict(known), 0) << other;
        EXPECT_EQ(conflict.get_conflict_dir_name(), "") << other;
    }
}

TEST(Conflict, NamesTheDirectoryOfTheFirstCellThatHoldsAFont) {
    const Ref<GWFont> late = make_font("a");
    late->set_dir_name("/late/");
    const Ref<GWFont> early = make_font("b");
    early->set_dir_name("/early/");
    GWConflict conflict(GWConflict::INSTALL, nullptr, nullptr, nullptr, "/new/", nullptr);
    EXPECT_EQ(conflict.get_conflict_dir_name(), "");
    conflict.set_conflict(GWConflict::SAME_NAME, late.get(), 3, 0);
    EXPECT_EQ(conflict.get_conflict_dir_name(), "/late/");
    conflict.set_conflict(GWConflict::SAME_NAME, early.get(), 2, 5);
    EXPECT_EQ(conflict.get_conflict_dir_name(), "/early/");
    conflict.set_conflict(GWConflict::SAME_NAME, late.get(), 2, 4);
    EXPECT_EQ(conflict.get_conflict_dir_name(), "/late/");
}

TEST(Conflict, OfAnAliasIsReadOnlyAndChangesNothing) {
    RecordingModules modules;
    GWAlias alias("fixed", "-x", "/aliases/");
    const Ref<GWFont> font = make_font("fixed");
    GWHRNList list(0);
    list.add_font(font.get());
    for (const GWConflict::TYPE type : {GWConflict::INSTALL, GWConflict::DELETE}) {
        GWHRNElement* elem = list.get_elem_at_pos(1);
        GWConflict conflict(type, elem, &alias, elem, "/new/", &list);
        EXPECT_EQ(conflict.get_alias(), &alias);
        EXPECT_EQ(conflict.is_conflict(GWConflict::READ_ONLY), 1);
        EXPECT_EQ(conflict.is_conflict(GWConflict::ALIAS), 1);
        EXPECT_EQ(conflict.is_conflict(GWConflict::SAME_NAME), 0);
        conflict.install_force(modules.list);
        conflict.delete_force(modules.list);
    }
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_EQ(list.get_count(), 1);

    // The deletion of an alias makes a conflict without an element.
    GWConflict bare(GWConflict::DELETE, nullptr, &alias, nullptr, nullptr, nullptr);
    bare.delete_force(modules.list);
    bare.install_force(modules.list);
    EXPECT_EQ(bare.get_conflict_dir_name(), "");
}

/// An element to install and a list of installed fonts.
class ConflictForce : public testing::Test {
  protected:
    ~ConflictForce() override { gw::delete_elements(conflicts); }

    Ref<GWFont> installed_font(const Xlfd& name, GWFont::GW_FONT_TYPE type = GWFont::BITMAP_FONT) {
        Ref<GWFont> font = make_font(name, type);
        font->set_dir_name("/old/");
        installed.add_font(font.get());
        return font;
    }
    /// The conflict of installing these fonts.
    GWConflict& conflict_of(const std::vector<Ref<GWFont>>& fonts) {
        GWHRNList source(0);  // ends before the conflict is resolved
        for (const Ref<GWFont>& font : fonts) source.add_font(font.get());
        GW_SORTED_LIST<GWAlias> aliases(0);
        EXPECT_EQ(source.install_at_pos(1, dir.c_str(), installed, aliases, modules.list, conflicts),
                  GWHRNElement::CONFLICT);
        EXPECT_EQ(conflicts.get_count(), 1);
        return *conflicts.get_elem_at_pos(1);
    }
    std::vector<std::string> listed_sizes() {
        unsigned count = 0;
        return installed.get_point_sizes(1, count);
    }
    [[nodiscard]] std::string installed_text(const Xlfd& name) const {
        return "install " + name.str() + ' ' + dir.path();
    }

    TempDir dir;
    RecordingModules modules;
    GWHRNList installed{0};
    GW_LIST<GWConflict> conflicts;
};

using ConflictInstall = ConflictForce;

TEST_F(ConflictInstall, ReplacesTheInstalledFont) {
    const Xlfd name;
    const Ref<GWFont> old = installed_font(name);
    GWConflict& conflict = conflict_of({make_font(name)});
    conflict.install_force(modules.list);
    EXPECT_THAT(modules.calls, ElementsAre("delete " + name.str(), installed_text(name)));
    ASSERT_EQ(installed.get_count(), 1);
    GWFont* now = installed.get_elem_at_pos(1)->get_font("120", "75 X 75");
    EXPECT_NE(now, old.get());
    EXPECT_EQ(now->get_dir_name(), dir.path());
    EXPECT_EQ(old->owners(), 1) << "the replaced font is still held";
}

TEST_F(ConflictInstall, AddsTheSizesThatWereNotThere) {
    const Xlfd small{.decipoints = "80"};
    const Xlfd large{.decipoints = "240"};
    const Xlfd both{.decipoints = "120"};
    installed_font(small);
    const Ref<GWFont> old = installed_font(both);
    GWConflict& conflict = conflict_of({make_font(large), make_font(both)});
    conflict.install_force(modules.list);
    EXPECT_THAT(modules.calls,
                ElementsAre("delete " + both.str(), installed_text(both), installed_text(large)));
    EXPECT_THAT(listed_sizes(), ElementsAre("80", "120", "240"));
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_font("80", "75 X 75")->get_dir_name(), std::string("/old/"));
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_font("240", "75 X 75")->get_dir_name(), dir.path());
}

TEST_F(ConflictInstall, InstallsEveryFontOfASize) {
    const Xlfd coarse{.resolution = "75"};
    const Xlfd fine{.resolution = "100"};
    installed_font(fine);
    conflict_of({make_font(coarse), make_font(fine)}).install_force(modules.list);
    EXPECT_THAT(modules.calls,
                ElementsAre(installed_text(coarse), "delete " + fine.str(), installed_text(fine)));
    unsigned count = 0;
    EXPECT_THAT(installed.get_res_for_pt_size(1, "120", count), ElementsAre("75 X 75", "100 X 100"));
}

TEST_F(ConflictInstall, ReplacesAnOutlineFont) {
    const Xlfd name;
    installed_font(name, GWFont::TYPE1_FONT);
    GWConflict& conflict = conflict_of({make_font(name, GWFont::TYPE1_FONT)});
    conflict.install_force(modules.list);
    EXPECT_THAT(modules.calls,
                ElementsAre("outline delete " + name.str(), "outline " + installed_text(name)));
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative()->get_dir_name(), dir.path());
    EXPECT_STREQ(installed.get_elem_at_pos(1)->get_name(), "Courier Medium [Type-1]");
}

TEST_F(ConflictInstall, DoesNothingForAReadOnlyFont) {
    installed.add_font(make_read_only_font(Xlfd{}.str()).get());
    GWConflict& conflict = conflict_of({make_font(Xlfd{})});
    conflict.install_force(modules.list);
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_EQ(installed.get_elem_at_pos(1)->is_read_only(), 1);
}

TEST_F(ConflictInstall, ThatAnotherProgramCarriesOutCanBeDecidedAndDoesNothingHere) {
    const Ref<GWFont> old = make_read_only_font(Xlfd{}.str());
    place(*old, "/old/", {"font.pcf"});
    installed.add_font(old.get());
    GWConflict& conflict = conflict_of({make_font(Xlfd{})});
    EXPECT_FALSE(conflict.can_be_decided());
    EXPECT_FALSE(conflict.is_entrusted());
    EXPECT_TRUE(conflict.entrust("/another/a.pcf, /old/font.pcf"));
    EXPECT_TRUE(conflict.is_entrusted() && conflict.can_be_decided());
    EXPECT_THAT(conflict.get_conflict_files(), ElementsAre("/old/font.pcf"));
    conflict.install_force(modules.list);
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_FALSE(conflict.entrust("/old/font.pcf.gz, /very/old/font.pcf")) << "none of them is in the way";
    EXPECT_TRUE(conflict.get_conflicting_fonts().empty());
}

TEST_F(ConflictInstall, LosesNothingWhenASizeIsFullAlready) {
    for (int i = 1; i <= 20; ++i) installed_font(Xlfd{.resolution = std::to_string(i)});
    conflict_of({make_font(Xlfd{.resolution = "1"}), make_font(Xlfd{.resolution = "21"})})
        .install_force(modules.list);
    EXPECT_EQ(modules.calls.size(), 3U);
    unsigned count = 0;
    installed.get_res_for_pt_size(1, "120", count);
    EXPECT_EQ(count, 21U);
    EXPECT_EQ(installed.get_count(), 1);
}

TEST_F(ConflictInstall, OutlivesTheListsThatWereRefilled) {
    const Xlfd name;
    Ref<GWFont> old = installed_font(name);
    GWConflict& conflict = conflict_of({make_font(name)});
    installed.clear();
    old = Ref<GWFont>();
    EXPECT_EQ(conflict.get_conflict_dir_name(), "/old/");
    conflict.install_force(modules.list);
    EXPECT_EQ(modules.calls.size(), 2U);
    EXPECT_STREQ(conflict.get_other_element()->get_name(), "Courier Medium [Bitmap]");
}

TEST_F(ConflictInstall, TwiceInstallsAgainWithoutDeleting) {
    const Xlfd name;
    installed_font(name);
    GWConflict& conflict = conflict_of({make_font(name)});
    conflict.install_force(modules.list);
    modules.calls.clear();
    conflict.install_force(modules.list);
    EXPECT_THAT(modules.calls, ElementsAre(installed_text(name)));
}

/// With the module that really copies and deletes.
class ConflictFiles : public testing::Test {
  protected:
    ConflictFiles() { modules.append(&bitmap); }
    ~ConflictFiles() override { gw::delete_elements(conflicts); }

    /// A font of one file "font.pcf" in that directory, listed in its index.
    Ref<GWFont> font_in(const std::string& sub_dir) const {
        dir.write(sub_dir + "/font.pcf", sub_dir);
        dir.write(sub_dir + "/fonts.dir", "1\nfont.pcf " + Xlfd{}.str() + '\n');
        Ref<GWFont> font = make_font(Xlfd{});
        place(*font, dir.file(sub_dir) + '/', {"font.pcf"});
        EXPECT_FALSE(font->is_read_only()) << sub_dir;
        return font;
    }
    void force(const Ref<GWFont>& font, const std::string& sub_dir) {
        GWHRNList source(0);
        source.add_font(font.get());
        GW_SORTED_LIST<GWAlias> aliases(0);
        ASSERT_EQ(
            source.install_at_pos(1, (dir.make_dir(sub_dir)).c_str(), installed, aliases, modules, conflicts),
            GWHRNElement::CONFLICT);
        conflicts.get_elem_at_pos(1)->install_force(modules);
    }
    [[nodiscard]] static std::string index_of_one() { return "1\nfont.pcf " + Xlfd{}.str() + '\n'; }

    TempDir dir;
    GW_PCF_FSM bitmap;
    GW_FSM_LIST modules;
    GWHRNList installed{0};
    GW_LIST<GWConflict> conflicts;
};

TEST_F(ConflictFiles, TheNewFontTakesThePlaceOfTheOld) {
    installed.add_font(font_in("old").get());
    force(font_in("source"), "old");
    EXPECT_EQ(dir.read("old/font.pcf"), "source");
    EXPECT_EQ(dir.read("old/fonts.dir"), index_of_one());
    EXPECT_EQ(dir.read("source/font.pcf"), "source");
}

TEST_F(ConflictFiles, TheOldFontGoesFromAnotherDirectory) {
    installed.add_font(font_in("old").get());
    force(font_in("source"), "new");
    EXPECT_FALSE(dir.exists("old/font.pcf"));
    EXPECT_EQ(dir.read("old/fonts.dir"), "0\n");
    EXPECT_EQ(dir.read("new/font.pcf"), "source");
    EXPECT_EQ(dir.read("new/fonts.dir"), index_of_one());
}

// The source of an installation may be on the font path itself. Deleting the old font first would lose the
// only copy.
TEST_F(ConflictFiles, AFontInstalledFromItsInstalledPlaceMoves) {
    installed.add_font(font_in("old").get());
    const Ref<GWFont> again = make_font(Xlfd{});
    place(*again, dir.file("old") + '/', {"font.pcf"});
    force(again, "new");
    EXPECT_EQ(dir.read("new/font.pcf"), "old");
    EXPECT_EQ(dir.read("new/fonts.dir"), index_of_one());
    EXPECT_FALSE(dir.exists("old/font.pcf"));
    EXPECT_EQ(dir.read("old/fonts.dir"), "0\n");
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative()->get_dir_name(), dir.file("new") + '/');
}

TEST_F(ConflictFiles, AFontInstalledOntoItselfStays) {
    const Ref<GWFont> old = font_in("old");
    installed.add_font(old.get());
    const Ref<GWFont> again = make_font(Xlfd{});
    place(*again, dir.file("old"), {"font.pcf"});
    force(again, "old");
    EXPECT_EQ(dir.read("old/font.pcf"), "old");
    EXPECT_EQ(dir.read("old/fonts.dir"), index_of_one());
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative(), old.get());
}

TEST_F(ConflictFiles, AFontThatCannotBeCopiedElsewhereStays) {
    installed.add_font(font_in("old").get());
    const Ref<GWFont> again = make_font(Xlfd{});
    place(*again, dir.file("old") + '/', {"font.pcf"});
    dir.make_dir("new/font.pcf");  // so that the copy fails
    const gw::test::HeardFailures heard;
    force(again, "new");
    EXPECT_NE(heard.text().find("new/font.pcf"), std::string::npos);
    EXPECT_EQ(dir.read("old/font.pcf"), "old");
    EXPECT_EQ(dir.read("old/fonts.dir"), index_of_one());
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative()->get_dir_name(), dir.file("old") + '/');
}

// The copy of the new font fails after the old one was deleted. The old font is in the same directory or in
// another one.
TEST_F(ConflictFiles, TheOldFontComesBackWhenTheNewOneCannotBeCopied) {
    for (const char* target : {"old", "new"}) {
        installed.clear();
        gw::delete_elements(conflicts);
        const Ref<GWFont> old = font_in("old");
        dir.write("old/fonts.dir", "2\nfont.pcf " + Xlfd{}.str() + "\nother.pcf other\n");
        dir.write("old/glyphwd.upr", "resources");
        installed.add_font(old.get());
        const Ref<GWFont> unreadable = make_font(Xlfd{});
        place(*unreadable, dir.file("gone") + '/', {"font.pcf"});
        const gw::test::HeardFailures heard;
        force(unreadable, target);
        EXPECT_EQ(heard.text(),
                  dir.file("gone/font.pcf") + ": No such file or directory; the font is left out\n");
        EXPECT_EQ(dir.read("old/font.pcf"), "old") << target;
        EXPECT_EQ(dir.read("old/fonts.dir"), "2\nfont.pcf " + Xlfd{}.str() + "\nother.pcf other\n");
        EXPECT_EQ(dir.read("old/glyphwd.upr"), "resources");
        EXPECT_FALSE(dir.exists("old/.font.pcf.gwkept"));
        EXPECT_FALSE(dir.exists("new/font.pcf"));
        ASSERT_EQ(installed.get_count(), 1);
        EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative(), old.get());
    }
}

TEST_F(ConflictFiles, TheOldFontComesBackOnAFullDisk) {
    const gw::test::SmallDisk disk;
    const std::string index = index_of_one();
    disk.write("fonts.dir", index);
    disk.write("font.pcf", "old");
    const Ref<GWFont> old = make_font(Xlfd{});
    place(*old, disk.path(), {"font.pcf"});
    installed.add_font(old.get());
    const Ref<GWFont> large = font_in("source");
    dir.write("source/font.pcf", std::string(50000, 'x'));
    disk.leave_blocks(0);
    GWHRNList source(0);
    source.add_font(large.get());
    GW_SORTED_LIST<GWAlias> aliases(0);
    ASSERT_EQ(source.install_at_pos(1, disk.path().c_str(), installed, aliases, modules, conflicts),
              GWHRNElement::CONFLICT);
    const gw::test::HeardFailures heard;
    conflicts.get_elem_at_pos(1)->install_force(modules);
    EXPECT_NE(heard.text().find("No space left on device"), std::string::npos);
    EXPECT_EQ(disk.read("font.pcf"), "old");
    EXPECT_EQ(disk.read("fonts.dir"), index);
    EXPECT_EQ(disk.entries(), 2);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative(), old.get());
}

TEST_F(ConflictFiles, AFontThatCannotBeDeletedIsNotReplaced) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    const Ref<GWFont> old = font_in("old");
    installed.add_font(old.get());
    const Ref<GWFont> font = font_in("source");
    std::filesystem::permissions(dir.file("old/fonts.dir"), std::filesystem::perms::owner_read);
    const gw::test::HeardFailures heard;
    force(font, "new");
    EXPECT_NE(heard.text().find("the font stays"), std::string::npos);
    EXPECT_EQ(dir.read("old/font.pcf"), "old");
    EXPECT_EQ(dir.read("old/fonts.dir"), index_of_one());
    EXPECT_FALSE(dir.exists("new/font.pcf"));
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative(), old.get());
}

TEST_F(ConflictFiles, AFontThatNoIndexCanHoldReplacesNothing) {
    installed.add_font(font_in("old").get());
    dir.write("source/two words.pcf", "source");
    const Ref<GWFont> refused = make_font(Xlfd{});
    place(*refused, dir.file("source") + '/', {"two words.pcf"});
    const gw::test::HeardFailures heard;
    force(refused, "old");
    EXPECT_NE(heard.text().find("two words.pcf"), std::string::npos);
    EXPECT_EQ(dir.read("old/font.pcf"), "old");
    EXPECT_EQ(dir.read("old/fonts.dir"), index_of_one());
    EXPECT_FALSE(dir.exists("old/two words.pcf"));
}

using ConflictDelete = ConflictForce;

TEST_F(ConflictDelete, DeletesSystemFontsAndTheElement) {
    const Ref<GWFont> small = make_font(Xlfd{.decipoints = "80"});
    const Ref<GWFont> large = make_font(Xlfd{.decipoints = "240"});
    small->set_dir_name("/usr/vantor/lib/X11/fonts/misc/");
    large->set_dir_name("/home/fonts/");
    installed.add_font(small.get());
    installed.add_font(large.get());
    installed.add_font(make_font("other").get());
    ASSERT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::CONFLICT);
    ASSERT_EQ(conflicts.get_count(), 1);
    EXPECT_TRUE(modules.calls.empty());
    conflicts.get_elem_at_pos(1)->delete_force(modules.list);
    EXPECT_THAT(modules.calls, ElementsAre("delete " + Xlfd{.decipoints = "80"}.str(),
                                           "delete " + Xlfd{.decipoints = "240"}.str()));
    EXPECT_THAT(names_of(installed), ElementsAre("other  [Bitmap]"));
    gw::delete_elements(conflicts);
    EXPECT_EQ(small->owners(), 1);
    EXPECT_EQ(large->owners(), 1);
}

TEST_F(ConflictDelete, DoesNothingForAReadOnlyFont) {
    installed.add_font(make_read_only_font("fixed").get());
    ASSERT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::CONFLICT);
    conflicts.get_elem_at_pos(1)->delete_force(modules.list);
    EXPECT_TRUE(modules.calls.empty());
    EXPECT_EQ(installed.get_count(), 1);
}

TEST_F(ConflictDelete, KeepsTheFontThatCouldNotBeDeleted) {
    const Ref<GWFont> font = make_font("fixed");
    font->set_dir_name("/usr/vantor/lib/X11/fonts/");
    installed.add_font(font.get());
    ASSERT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::CONFLICT);
    modules.bitmap.refused = "fixed";
    conflicts.get_elem_at_pos(1)->delete_force(modules.list);
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_representative(), font.get());
}

TEST_F(ConflictDelete, OfAnElementThatHasLeftTheListDeletesItsFontsAlone) {
    const Ref<GWFont> font = make_font("fixed");
    font->set_dir_name("/usr/vantor/lib/X11/fonts/");
    installed.add_font(font.get());
    ASSERT_EQ(installed.delete_at_pos(1, modules.list, conflicts), GWHRNElement::CONFLICT);
    installed.clear();
    installed.add_font(make_font("fixed").get());
    conflicts.get_elem_at_pos(1)->delete_force(modules.list);
    EXPECT_THAT(modules.calls, ElementsAre("delete fixed"));
    EXPECT_EQ(installed.get_count(), 1);
    conflicts.get_elem_at_pos(1)->delete_force(modules.list);
    EXPECT_EQ(modules.calls.size(), 1U) << "what is deleted is not deleted again";
}

}  // namespace
