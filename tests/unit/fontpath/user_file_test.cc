// SPDX-License-Identifier: MIT
//
// The font path file of an ordinary user: its format, and what happens to it when a write fails. These tests
// run in the sandbox.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "font_path_fixture.h"

namespace {

using namespace gw::test;

class UsersFontPath : public FontPath {
  protected:
    void SetUp() override {
        if (is_root()) GTEST_SKIP() << "the file is an ordinary user's";
    }
    [[nodiscard]] std::string file() const { return home.read(".VTfontpath"); }
};

TEST_F(UsersFontPath, IsWrittenByteForByteWithABackup) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    const GW_STRING element("/new dir/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1), 1);
    EXPECT_EQ(file(), "/a/\n/new dir/\n\n/p/\n");
    EXPECT_EQ(home.read(".VTfontpath.bak"), "/a/\n\n/p/\n");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_PREPEND_FP, &element, 0), 1);
    EXPECT_EQ(file(), "/a/\n/new dir/\n\n/new dir/\n/p/\n");
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_PREPEND_FP, -1), 1);
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_PREPEND_FP, 1), 1);
    EXPECT_EQ(file(), "/a/\n/new dir/\n");
}

TEST_F(UsersFontPath, IsMadeWhenThereIsNone) {
    const auto store = main_store();
    EXPECT_EQ(store->is_writeable(GWFontPath::USER_APPEND_FP), 1);
    const GW_STRING element("/new/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, 0), 1);
    EXPECT_EQ(file(), "/new/\n");
    EXPECT_FALSE(home.exists(".VTfontpath.bak"));
}

TEST_F(UsersFontPath, WhatWasWrittenReadsBackEqual) {
    const auto store = main_store();
    for (const char* text : {"/a/", "/b/"}) {
        const GW_STRING element(text);
        store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1);
        store->insert_after_pos(GWFontPath::USER_PREPEND_FP, &element, -1);
    }
    const auto again = main_store();
    EXPECT_EQ(elements(*again, GWFontPath::USER_APPEND_FP), (Texts{"/a/", "/b/"}));
    EXPECT_EQ(elements(*again, GWFontPath::USER_PREPEND_FP), (Texts{"/a/", "/b/"}));
}

gw::Outcome replace_users(GWFontPath& store, const Texts& front, const Texts& end) {
    GW_LIST<GW_STRING> lists[2];
    const gw::ElementsOwner front_owner(lists[0]);
    const gw::ElementsOwner end_owner(lists[1]);
    for (const std::string& text : front) lists[0].append(new GW_STRING(text.c_str()));
    for (const std::string& text : end) lists[1].append(new GW_STRING(text.c_str()));
    return store.replace_users(lists[0], lists[1]);
}

TEST_F(UsersFontPath, BothSectionsAreReplacedInOneWrite) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    ASSERT_TRUE(replace_users(*store, {"/a/", "/new dir/"}, {"/p/"}));
    EXPECT_EQ(file(), "/p/\n\n/a/\n/new dir/\n");
    EXPECT_EQ(home.read(".VTfontpath.bak"), "/a/\n\n/p/\n");
    EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), (Texts{"/a/", "/new dir/"}));
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/p/"});
    const Texts all = elements(*store, GWFontPath::ALL_FP);
    EXPECT_EQ(all.front(), "/a/");
    EXPECT_EQ(all.back(), "/p/");
    ASSERT_TRUE(replace_users(*store, {"/p/"}, {}));
    EXPECT_EQ(elements(*main_store(), GWFontPath::USER_PREPEND_FP), Texts{"/p/"});
    ASSERT_TRUE(replace_users(*store, {}, {}));
    EXPECT_EQ(file(), "");
}

TEST_F(UsersFontPath, BothSectionsStayWhenOneElementIsRefused) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    EXPECT_EQ(replace_users(*store, {"/x/"}, {"/a,b/"}).failure().reason, gw::Reason::COMMA_IN_NAME);
    EXPECT_EQ(replace_users(*store, {"/x\n/"}, {}).failure().reason, gw::Reason::NAME_UNFIT_FOR_PATH);
    EXPECT_EQ(file(), "/a/\n\n/p/\n");
    EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), Texts{"/p/"});
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
}

TEST_F(UsersFontPath, SettingTheAppendSectionReplacesTheList) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    list.append(new GW_STRING("/x/"));
    EXPECT_EQ(store->set_font_path(GWFontPath::USER_APPEND_FP, &list), 1);
    EXPECT_EQ(file(), "/x/\n\n/p/\n");
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/x/"});
}

// The list in memory stays as it was when the prepend section is written, and is replaced when writing fails.
TEST_F(UsersFontPath, SettingThePrependSectionReplacesTheListOnFailureOnly) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    list.append(new GW_STRING("/x/"));
    EXPECT_EQ(store->set_font_path(GWFontPath::USER_PREPEND_FP, &list), 1);
    EXPECT_EQ(file(), "/a/\n\n/x/\n");
    EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), Texts{"/p/"});
    std::filesystem::remove_all(home.path());
    EXPECT_EQ(store->set_font_path(GWFontPath::USER_PREPEND_FP, &list), 0);
    EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), Texts{"/x/"});
}

// When a deletion cannot be written, the element comes back one position further down.
TEST_F(UsersFontPath, AFailedDeletionMovesTheElementBack) {
    home.write(".VTfontpath", "/a/\n/b/\n/c/\n/d/\n");
    const auto store = main_store();
    std::filesystem::remove_all(home.path());
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_APPEND_FP, 1), 0);
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), (Texts{"/b/", "/c/", "/a/", "/d/"}));
    const GW_STRING element("/new/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, 0), 0);
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), (Texts{"/b/", "/c/", "/a/", "/d/"}));
}

// Each line goes through the shell when the file is read again.
TEST_F(UsersFontPath, NoNameOfADirectoryIsRunOrSpoilsTheLinesBehindIt) {
    const std::string canary = home.file("canary");
    const Texts names = {"/a b/",
                         "/$(touch " + canary + ")/",
                         "/`touch " + canary + "`/",
                         "/x; touch " + canary + "/",
                         "/x|y&z/",
                         "/x > " + canary + "/",
                         "/it's/",
                         "/'quoted'/",
                         "/\"open/",
                         "/*/",
                         "/u?r/[a-z]/",
                         "/a * b/ ? [a-z]",
                         "/a ~ ~root/b/",
                         "-/a/",
                         "/a#b/#c/",
                         "/{a}/",
                         "/100$/$9/$$/",
                         "/${HOME:-x}/",
                         "/caf\xe9/\xc3\xa9/",
                         "tcp/server:7100",
                         "/" + std::string(498, 'y') + "/",
                         "/" + std::string(1098, 'x') + "/",
                         "/last/"};
    const auto store = main_store();
    for (const std::string& name : names) {
        const GW_STRING element(name.c_str());
        EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1), 1) << name;
        EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_PREPEND_FP, &element, -1), 1) << name;
    }
    const auto again = main_store();
    EXPECT_EQ(elements(*again, GWFontPath::USER_APPEND_FP), names);
    EXPECT_EQ(elements(*again, GWFontPath::USER_PREPEND_FP), names);
    EXPECT_FALSE(home.exists("canary"));
}

TEST_F(UsersFontPath, AReferenceToAVariableIsWrittenAsItStands) {
    const auto store = main_store();
    for (const char* text : {"$HOME/fonts/", "${HOME}/more/"}) {
        const GW_STRING element(text);
        EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1), 1) << text;
    }
    EXPECT_EQ(file(), "$HOME/fonts/\n${HOME}/more/\n");
    EXPECT_EQ(elements(*main_store(), GWFontPath::USER_APPEND_FP),
              (Texts{home.file("fonts/"), home.file("more/")}));
}

// A line of the file cannot hold these elements; an empty line would end the section.
TEST_F(UsersFontPath, WhatTheFileCannotHoldIsRefusedAndChangesNothing) {
    home.write(".VTfontpath", "/a/\n\n/p/\n");
    const auto store = main_store();
    for (const char* text : {"", " ", "\t", "/two\nlines/", " /leading/", "/trailing ", "/two  blanks/",
                             "/a\ttab/", "/back\\slash/", "-n", "-n /a/", "-neE /a/"}) {
        const GW_STRING element(text);
        GW_LIST<GW_STRING> list;
        const gw::ElementsOwner owner(list);
        list.append(new GW_STRING(text));
        for (const auto t : {GWFontPath::USER_PREPEND_FP, GWFontPath::USER_APPEND_FP}) {
            EXPECT_EQ(store->insert_after_pos(t, &element, 0), 0) << '"' << text << '"';
            EXPECT_EQ(store->set_font_path(t, &list), 0) << '"' << text << '"';
        }
    }
    EXPECT_EQ(file(), "/a/\n\n/p/\n");
    EXPECT_FALSE(home.exists(".VTfontpath.bak"));
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
    EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), Texts{"/p/"});
}

TEST_F(UsersFontPath, AFailedWriteRestoresTheFile) {
    home.write(".VTfontpath", "/a/\n");
    const auto store = main_store();
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    list.append(new GW_STRING(("/" + std::string(100000, 'x')).c_str()));
    const SmallFiles full(4096);
    EXPECT_EQ(store->set_font_path(GWFontPath::USER_APPEND_FP, &list), 0);
    EXPECT_EQ(file(), "/a/\n");
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
}

TEST_F(UsersFontPath, AFailedFirstWriteLeavesNoFile) {
    const auto store = main_store();
    const GW_STRING element(("/" + std::string(100000, 'x')).c_str());
    const SmallFiles full(4096);
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1), 0);
    EXPECT_FALSE(home.exists(".VTfontpath"));
    EXPECT_TRUE(elements(*store, GWFontPath::USER_APPEND_FP).empty());
}

TEST_F(UsersFontPath, ABackupOfAnEarlierWriteIsReplaced) {
    home.write(".VTfontpath", "/a/\n");
    home.write(".VTfontpath.bak", "/older/\n");
    const auto store = main_store();
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_APPEND_FP, -1), 1);
    EXPECT_EQ(file(), "");
    EXPECT_EQ(home.read(".VTfontpath.bak"), "/a/\n");
}

TEST_F(UsersFontPath, DeletingOutsideTheListIsRefused) {
    home.write(".VTfontpath", "/a/\n");
    const auto store = main_store();
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_APPEND_FP, 2), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_PREPEND_FP, 1), 0);
    EXPECT_FALSE(home.exists(".VTfontpath.bak")) << "nothing was written";
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
}

TEST_F(UsersFontPath, TheHostsPathPassesForWritableWhileItsDirectoryIsMissing) {
    ASSERT_FALSE(std::filesystem::exists("/etc/vantor/server/etc"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(main_store()->is_writeable(GWFontPath::HOST_FP), 1);
    testing::internal::GetCapturedStderr();  // the commands complain
}

TEST_F(UsersFontPath, AFileThatMayNotBeWrittenIsRefused) {
    const std::string path = home.write(".VTfontpath", "/a/\n");
    ::chmod(path.c_str(), 0444);
    const auto store = main_store();
    EXPECT_EQ(store->is_writeable(GWFontPath::USER_PREPEND_FP), 0);
    const GW_STRING element("/new/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, 0), 0);
    EXPECT_EQ(file(), "/a/\n");
}

}  // namespace
