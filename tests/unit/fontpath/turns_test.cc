// SPDX-License-Identifier: MIT
//
// Several processes that change the same font path, and font path files that cannot be read.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/gw_list.h"
#include "font_path_fixture.h"
#include "fontpath/vtfontpath_file.h"
#include "platform/shell_command.h"
#include "store/own_directory.h"
#include "support/heard_failures.h"

namespace {

using namespace gw::test;

/// During its life, nobody waits long for a lock.
class ShortPatience {
  public:
    ShortPatience() { gw::set_lock_patience(50); }
    ~ShortPatience() { gw::set_lock_patience(5000); }
    ShortPatience(const ShortPatience&) = delete;
    ShortPatience& operator=(const ShortPatience&) = delete;
};

class UsersTurn : public FontPath {
  protected:
    void SetUp() override {
        if (is_root()) GTEST_SKIP() << "the file is an ordinary user's";
        home.write(".VTfontpath", "/a/\n/b/\n\n/p/\n");
    }
    static int add(GWFontPath& store, const char* dir, int pos = -1) {
        const GW_STRING element(dir);
        return store.insert_after_pos(GWFontPath::USER_APPEND_FP, &element, pos);
    }
    static gw::Outcome replace(GWFontPath& store, const Texts& texts) {
        GW_LIST<GW_STRING> list;
        const gw::ElementsOwner owner(list);
        for (const std::string& text : texts) list.append(new GW_STRING(text.c_str()));
        return store.replace(GWFontPath::USER_APPEND_FP, list);
    }
    [[nodiscard]] std::string file() const { return home.read(".VTfontpath"); }
};

TEST_F(UsersTurn, WhatAnotherRunHasAddedStays) {
    const auto one = main_store();
    const auto other = main_store();
    EXPECT_EQ(add(*one, "/one/"), 1);
    EXPECT_EQ(add(*other, "/other/"), 1);
    EXPECT_EQ(file(), "/a/\n/b/\n/one/\n/other/\n\n/p/\n");
    EXPECT_EQ(elements(*other, GWFontPath::USER_APPEND_FP), (Texts{"/a/", "/b/", "/one/", "/other/"}));
    EXPECT_EQ(replace(*one, {"/b/", "/one/"}).operator bool(), true);
    EXPECT_EQ(file(), "/b/\n/one/\n/other/\n\n/p/\n") << "/a/ was taken out, /other/ was not known";
}

TEST_F(UsersTurn, WhatAnotherRunHasTakenOutDoesNotComeBack) {
    const auto one = main_store();
    const auto other = main_store();
    EXPECT_EQ(other->delete_pos(GWFontPath::USER_APPEND_FP, 1), 1);
    EXPECT_TRUE(replace(*one, {"/new/", "/a/", "/b/"}));
    EXPECT_EQ(file(), "/new/\n/b/\n\n/p/\n");
}

TEST_F(UsersTurn, BothSectionsKeepWhatAnotherRunHasDone) {
    const auto one = main_store();
    const auto other = main_store();
    EXPECT_FALSE(one->is_out_of_date());
    EXPECT_EQ(add(*other, "/other/"), 1);
    EXPECT_FALSE(other->is_out_of_date());
    EXPECT_TRUE(one->is_out_of_date());
    GW_LIST<GW_STRING> front;
    GW_LIST<GW_STRING> end;
    const gw::ElementsOwner front_owner(front);
    const gw::ElementsOwner end_owner(end);
    front.append(new GW_STRING("/p/"));
    front.append(new GW_STRING("/a/"));
    end.append(new GW_STRING("/b/"));
    ASSERT_TRUE(one->replace_users(front, end));
    EXPECT_EQ(file(), "/b/\n/other/\n\n/p/\n/a/\n");
    EXPECT_FALSE(one->is_out_of_date());
}

// Somebody could have put a link there where many may write.
TEST_F(UsersTurn, TheBackupIsNotWrittenThroughALink) {
    home.write("precious", "text");
    std::filesystem::create_symlink("precious", home.file(".VTfontpath.bak"));
    EXPECT_EQ(add(*main_store(), "/new/"), 1);
    EXPECT_EQ(home.read("precious"), "text");
    EXPECT_EQ(home.read(".VTfontpath.bak"), "/a/\n/b/\n\n/p/\n");
}

TEST_F(UsersTurn, APositionMeansTheElementThatTheUserSaw) {
    const auto one = main_store();
    const auto other = main_store();
    EXPECT_EQ(one->delete_pos(GWFontPath::USER_APPEND_FP, 1), 1);
    EXPECT_EQ(other->delete_pos(GWFontPath::USER_APPEND_FP, 2), 1);
    EXPECT_EQ(file(), "\n/p/\n");
    EXPECT_EQ(add(*one, "/new/"), 1);
    EXPECT_EQ(text_of(one->remove(GWFontPath::USER_APPEND_FP, 1)), "");
    const auto late = main_store();
    EXPECT_EQ(add(*one, "/x/"), 1);
    EXPECT_EQ(add(*late, "/y/", 0), 1);
    EXPECT_EQ(one->delete_pos(GWFontPath::USER_APPEND_FP, 1), 1) << "it saw /x/ there";
    EXPECT_EQ(file(), "/y/\n\n/p/\n");
}

TEST_F(UsersTurn, ADeletionOfWhatIsGoneIsRefused) {
    const auto one = main_store();
    const auto other = main_store();
    EXPECT_EQ(one->delete_pos(GWFontPath::USER_APPEND_FP, 1), 1);
    EXPECT_EQ(other->delete_pos(GWFontPath::USER_APPEND_FP, 1), 0);
    EXPECT_EQ(file(), "/b/\n\n/p/\n");
}

TEST_F(UsersTurn, AProcessThatKeepsTheLockIsNamed) {
    const auto store = main_store();
    const gw::Result<gw::Directory> dir = gw::Directory::open(home.path());
    ASSERT_TRUE(dir);
    const auto lock = gw::OwnDirectory::enter(*dir);
    ASSERT_TRUE(lock);
    const ShortPatience patience;
    const GW_STRING element("/new/");
    EXPECT_EQ(text_of(store->insert(GWFontPath::USER_APPEND_FP, element, -1)),
              home.file(".VTfontpath") + ": process " + std::to_string(::getpid()) +
                  " is changing this directory; the font path stays as it was");
    EXPECT_EQ(file(), "/a/\n/b/\n\n/p/\n");
}

// Where only a number comes back, nobody could say why nothing was done.
TEST_F(UsersTurn, WhatNobodyCanExpectIsTold) {
    const auto store = main_store();
    const std::string stays = "; the font path stays as it was\n";
    const HeardFailures heard;
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_APPEND_FP, 9), 0);
    EXPECT_EQ(add(*store, "/c/", 0), 1);
    EXPECT_EQ(heard.text(), "") << "nothing is there, and nothing failed";
    EXPECT_EQ(add(*store, "/a,b/"), 0);
    EXPECT_EQ(add(*store, "/two  blanks/"), 0);
    {
        const gw::Result<gw::Directory> dir = gw::Directory::open(home.path());
        ASSERT_TRUE(dir);
        const auto lock = gw::OwnDirectory::enter(*dir);
        ASSERT_TRUE(lock);
        const ShortPatience patience;
        EXPECT_EQ(add(*store, "/new/"), 0);
    }
    EXPECT_EQ(heard.text(), "/a,b/: a directory of a font path cannot have a comma in its name" + stays +
                                "/two  blanks/: this name does not fit into a font path file" + stays +
                                home.file(".VTfontpath") + ": process " + std::to_string(::getpid()) +
                                " is changing this directory" + stays);
}

TEST_F(UsersTurn, AFileThatCannotBeReadIsNeverWrittenOver) {
    ::chmod(home.file(".VTfontpath").c_str(), 0200);
    const HeardFailures heard;
    const auto store = main_store();
    EXPECT_EQ(heard.text(), home.file(".VTfontpath") + ": Permission denied; " + home.file(".VTfontpath") +
                                " is not read\n");
    const GW_STRING element("/new/");
    EXPECT_EQ(text_of(store->insert(GWFontPath::USER_APPEND_FP, element, -1)),
              home.file(".VTfontpath") +
                  ": it could not be read, so it is not written; the font path stays as it was");
    EXPECT_FALSE(replace(*store, {"/x/"}));
    ::chmod(home.file(".VTfontpath").c_str(), 0600);
    EXPECT_EQ(file(), "/a/\n/b/\n\n/p/\n");
    EXPECT_EQ(add(*store, "/new/"), 1) << "it can be read now";
    EXPECT_EQ(file(), "/a/\n/b/\n/new/\n\n/p/\n");
}

TEST_F(UsersTurn, AFileWithALineThatStopsTheShellIsNotWrittenOver) {
    home.write(".VTfontpath", "/a/\n'open\n/b/\n");
    const HeardFailures heard;
    const auto store = main_store();
    EXPECT_NE(heard.text().find(" is not read\n"), std::string::npos);
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
    EXPECT_EQ(add(*store, "/new/"), 0);
    EXPECT_EQ(file(), "/a/\n'open\n/b/\n");
}

TEST_F(UsersTurn, AFileWhoseLastCommandFailsIsReadAllTheSame) {
    home.write(".VTfontpath", "/a/\n/b/ | grep c\n");
    const HeardFailures heard;
    const auto store = main_store();
    EXPECT_EQ(heard.text(), "");
    EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), Texts{"/a/"});
    EXPECT_EQ(add(*store, "/new/"), 1);
    EXPECT_EQ(file(), "/a/\n/new/\n");
}

TEST_F(UsersTurn, ALineThatHangsDoesNotHangTheProgram) {
    home.write(".VTfontpath", "/a/\n$(sleep 1000)\n/b/\n");
    gw::set_command_patience(std::chrono::milliseconds(300));
    const HeardFailures heard;
    const auto store = main_store();
    gw::set_command_patience(gw::LONG_WORK);
    EXPECT_NE(heard.text().find("this command did not end and was stopped"), std::string::npos);
    EXPECT_EQ(add(*store, "/new/"), 0);
}

TEST_F(UsersTurn, APipeOrADirectoryIsNoFontPathFile) {
    for (const bool pipe : {true, false}) {
        std::filesystem::remove(home.file(".VTfontpath"));
        if (pipe) {
            ASSERT_EQ(::mkfifo(home.file(".VTfontpath").c_str(), 0600), 0);
        } else {
            home.make_dir(".VTfontpath");
        }
        const HeardFailures heard;
        const auto store = main_store();
        EXPECT_NE(heard.text().find(pipe ? "this is no ordinary file" : "Is a directory"), std::string::npos);
        EXPECT_EQ(add(*store, "/new/"), 0);
        EXPECT_FALSE(std::filesystem::is_regular_file(home.file(".VTfontpath")));
    }
}

TEST_F(UsersTurn, ADirectoryWithACommaIsRefusedInEveryPath) {
    const auto store = main_store();
    const GW_STRING comma("/a,b/");
    const std::string why = "/a,b/: a directory of a font path cannot have a comma in its name";
    for (const auto type : {GWFontPath::USER_APPEND_FP, GWFontPath::USER_PREPEND_FP, GWFontPath::SESSION_FP})
        EXPECT_EQ(text_of(store->insert(type, comma, -1)), why) << type;
    EXPECT_EQ(text_of(replace(*store, {"/c/", "/a,b/"})), why);
    EXPECT_EQ(file(), "/a/\n/b/\n\n/p/\n");
}

class RootsTurn : public FontPath {
  protected:
    void SetUp() override {
        if (!is_root()) GTEST_SKIP() << "the databases are the superuser's";
    }
};

TEST_F(RootsTurn, WhatAnotherRunHasAddedToADatabaseStays) {
    const auto one = own_store("/a/,/b/");
    const auto other = std::make_unique<GWFontPath>(own_root().c_str());
    const GW_STRING first("/one/");
    const GW_STRING second("/other/");
    EXPECT_EQ(one->insert_after_pos(GWFontPath::INSTALLATION_FP, &first, -1), 1);
    EXPECT_EQ(other->insert_after_pos(GWFontPath::INSTALLATION_FP, &second, 1), 1);
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/,/other/,/b/,/one/\n");
    EXPECT_EQ(one->delete_pos(GWFontPath::INSTALLATION_FP, 2), 1);
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/,/other/,/one/\n");
}

TEST_F(RootsTurn, SeesThatAnotherRunHasWritten) {
    const auto one = own_store("/a/");
    EXPECT_FALSE(one->is_out_of_date());
    const GW_STRING element("/one/");
    EXPECT_EQ(std::make_unique<GWFontPath>(own_root().c_str())
                  ->insert_after_pos(GWFontPath::INSTALLATION_FP, &element, -1),
              1);
    EXPECT_TRUE(one->is_out_of_date());
    GW_LIST<GW_STRING> none;
    EXPECT_FALSE(one->replace_users(none, none)) << "the superuser has no font path of their own";
}

// The dialog would say that the font path is read-only.
TEST_F(RootsTurn, ADatabaseThatAnotherProcessIsChangingPassesForWritable) {
    const auto store = own_store("/a/");
    const gw::Result<gw::Directory> dir = gw::Directory::open(own_root() + "/server/etc/");
    ASSERT_TRUE(dir);
    const auto lock = gw::OwnDirectory::enter(*dir);
    ASSERT_TRUE(lock);
    const ShortPatience patience;
    EXPECT_EQ(store->is_writeable(GWFontPath::INSTALLATION_FP), 1);
}

// It seemed empty, and the next change wrote that.
TEST_F(RootsTurn, ADatabaseThatCouldNotBeReadIsReadAgainBeforeItIsWritten) {
    (void)own_store("/a/,/b/");
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    GWFontPath store(own_root().c_str());
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(elements(store, GWFontPath::INSTALLATION_FP), Texts{});
    const GW_STRING element("/new/");
    EXPECT_EQ(text_of(store.insert(GWFontPath::INSTALLATION_FP, element, -1)), "");
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/,/b/,/new/\n");
}

TEST_F(RootsTurn, ADirectoryWithACommaIsRefused) {
    const auto store = own_store("/a/");
    const GW_STRING comma("/a,b/");
    EXPECT_FALSE(store->insert(GWFontPath::INSTALLATION_FP, comma, -1));
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/\n");
}

/// Files of the superuser in directories of different owners and modes.
class SuperusersFile : public FontPath {
  protected:
    void SetUp() override {
        if (!is_root()) GTEST_SKIP() << "makes files of several owners";
        const std::filesystem::path base = "/gw-root";
        std::filesystem::create_directories(base / "mid/low");
        write(path(), "/plain/\n$(touch /gw-root/canary)/x/\n~/y/\n\n/z/\nunfinished");
    }
    void TearDown() override { std::filesystem::remove_all("/gw-root"); }
    static std::string path() { return "/gw-root/mid/low/VTfontpath"; }
    static bool is_run() {
        std::filesystem::remove("/gw-root/canary");
        (void)gw::read_vtfontpath(path());
        return std::filesystem::exists("/gw-root/canary");
    }
};

TEST_F(SuperusersFile, IsRunByTheShellOnlyIfNobodyElseCanWriteIt) {
    ASSERT_TRUE(gw::is_in_superusers_hands(path()));
    EXPECT_TRUE(is_run());
    for (const char* level :
         {"/gw-root/mid/low/VTfontpath", "/gw-root/mid/low", "/gw-root/mid", "/gw-root"}) {
        const mode_t mode = std::filesystem::is_directory(level) ? 0755 : 0644;
        for (const mode_t open : {0022U, 0020U, 0002U}) {
            ::chmod(level, mode | open);
            EXPECT_FALSE(gw::is_in_superusers_hands(path())) << level << " " << std::oct << open;
            EXPECT_FALSE(is_run()) << level;
        }
        ::chmod(level, mode);
        ASSERT_EQ(::chown(level, 1000, 0), 0);
        EXPECT_FALSE(gw::is_in_superusers_hands(path())) << level;
        EXPECT_FALSE(is_run()) << level;
        ASSERT_EQ(::chown(level, 0, 0), 0);
        EXPECT_TRUE(gw::is_in_superusers_hands(path())) << level;
    }
}

TEST_F(SuperusersFile, IsNotRunThroughALinkOfSomebodyElse) {
    std::filesystem::create_directory("/gw-root/theirs");
    ASSERT_EQ(::chown("/gw-root/theirs", 1000, 1000), 0);
    std::filesystem::create_symlink(path(), "/gw-root/theirs/VTfontpath");
    EXPECT_FALSE(gw::is_in_superusers_hands("/gw-root/theirs/VTfontpath"));
    std::filesystem::create_symlink(path(), "/gw-root/VTfontpath");
    EXPECT_TRUE(gw::is_in_superusers_hands("/gw-root/VTfontpath"));
}

TEST_F(SuperusersFile, OfAFileThatIsNotRunTheLinesThatNeedNoShellAreTaken) {
    ::chmod(path().c_str(), 0666);
    const gw::VtFontPath elements = gw::read_vtfontpath(path());
    EXPECT_EQ(elements.append, Texts{"/plain/"});
    EXPECT_EQ(elements.prepend, Texts{"/z/"});
    EXPECT_EQ(text_of(elements.outcome),
              path() + ": this line is for the shell, and somebody else can write this file");
}

}  // namespace
