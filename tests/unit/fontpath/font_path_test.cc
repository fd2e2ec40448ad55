// SPDX-License-Identifier: MIT
//
// The font path store with its fixed files. These tests run in the sandbox, as the superuser (who edits the
// configuration) and as an ordinary user (who edits the session's font path and a file in the home
// directory).
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/gw_file_spec.h"
#include "font_path_fixture.h"

#include "support/heard_failures.h"
#include "support/session.h"

namespace {

using namespace gw::test;

// --- reading -----------------------------------------------------------------

TEST_F(FontPath, ReadsTheInstallationsPath) {
    EXPECT_EQ(elements(*own_store("/a/,/b c/,tcp/server:7100"), 0),
              (Texts{"/a/", "/b c/", "tcp/server:7100"}));
}

TEST_F(FontPath, WithoutTheAttributeThePathIsTheDefaultOfEight) {
    write(own_root() + "/server/etc/VTconfig", "XDISPLAY.0.zoom:\t2\n");
    GWFontPath store(own_root().c_str());
    const Texts path = elements(store, GWFontPath::INSTALLATION_FP);
    ASSERT_EQ(path.size(), 8U);
    EXPECT_EQ(path.front(), "/usr/vantor/lib/X11/fonts/Q7/");
    EXPECT_EQ(path.back(), "/usr/vantor/lib/X11/fonts/Kx+/");
}

TEST_F(FontPath, WithoutDatabaseThePathIsEmpty) {
    GWFontPath store(home.file("nowhere").c_str());
    EXPECT_TRUE(elements(store, GWFontPath::INSTALLATION_FP).empty());
    EXPECT_TRUE(elements(store, GWFontPath::ALL_FP).empty());
}

TEST_F(FontPath, AnUnknownListIsNull) {
    const auto store = own_store("/a/");
    for (const int type : {-1, 9, 100}) {
        unsigned count = 7;
        EXPECT_EQ(store->get_fpe_list(static_cast<GWFontPath::TYPE>(type), count), nullptr);
        EXPECT_EQ(count, 0U);
        const GW_STRING element("/x/");
        EXPECT_EQ(store->insert_after_pos(static_cast<GWFontPath::TYPE>(type), &element, 0), 0);
        EXPECT_EQ(store->is_writeable(static_cast<GWFontPath::TYPE>(type)), 0);
    }
}

TEST_F(FontPath, AVeryLongElementComesThroughWhole) {
    const std::string longest = "/" + std::string(1100, 'x') + "/";
    EXPECT_EQ(elements(*own_store(longest + ",/b/"), 0), (Texts{longest, "/b/"}));
}

TEST_F(FontPath, AnotherInstallationHasNoHostLocaleOrUserPath) {
    home.write(".VTfontpath", "/mine/\n");
    const auto store = own_store("/a/");
    for (int type = 1; type <= 6; ++type) EXPECT_TRUE(elements(*store, type).empty()) << type;
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), Texts{"/a/"});
}

TEST_F(FontPath, TheUsersFileIsReadInGroups) {
    if (is_root()) GTEST_SKIP() << "the superuser has no file";
    const std::string a499 = "/" + std::string(498, 'x');
    const std::string a500 = a499 + "y";
    const std::string a501 = a500 + "z";
    const struct {
        std::string bytes;
        Texts append;
        Texts prepend;
    } cases[] = {
        {"/a/\n/b/\n", {"/a/", "/b/"}, {}},
        {"\n/p/\n/q/\n", {}, {"/p/", "/q/"}},
        {"/a/\n\n/p/\n/q/\n \t\n/r/\n/s/\n", {"/a/"}, {"/r/", "/s/", "/p/", "/q/"}},
        {"$HOME/fonts\n  /indented/\n", {home.path() + "fonts", "/indented/"}, {}},
        {"/no newline", {}, {}},
        {"", {}, {}},
        // One read takes 500 characters. The rest of a longer line must not count as a line, nor as the empty
        // line that ends a section.
        {a499 + "\n/b/\n", {a499, "/b/"}, {}},
        {a500 + "\n/b/\n", {a500, "/b/"}, {}},
        {a501 + "\n/b/\n", {a501, "/b/"}, {}},
        {"/" + std::string(5000, 'x') + "\n\n/p/\n", {"/" + std::string(5000, 'x')}, {"/p/"}},
    };
    for (const auto& c : cases) {
        home.write(".VTfontpath", c.bytes);
        const auto store = main_store();
        EXPECT_EQ(elements(*store, GWFontPath::USER_APPEND_FP), c.append) << c.bytes;
        EXPECT_EQ(elements(*store, GWFontPath::USER_PREPEND_FP), c.prepend) << c.bytes;
    }
}

// Where the file was once expanded, somebody else may have something of that name.
TEST_F(FontPath, TheUsersFileIsReadWithoutAnotherFile) {
    if (is_root()) GTEST_SKIP() << "the superuser reads no such file";
    home.write(".VTfontpath", "$HOME/a b/\n\n/p/\n");
    const auto read = [] { return GWFontPath("/usr/vantor"); };
    const auto expect_all_of_it = [&] {
        auto store = read();
        EXPECT_EQ(elements(store, GWFontPath::USER_APPEND_FP), Texts{home.path() + "a b/"});
        EXPECT_EQ(elements(store, GWFontPath::USER_PREPEND_FP), Texts{"/p/"});
    };
    expect_all_of_it();
    EXPECT_FALSE(std::filesystem::exists("/tmp/.VTfontpath"));
    write("/tmp/.VTfontpath", "/of another process/\n");
    expect_all_of_it();
    EXPECT_EQ(TempDir::read_bytes("/tmp/.VTfontpath"), "/of another process/\n");
    std::filesystem::remove("/tmp/.VTfontpath");
    std::filesystem::create_directory("/tmp/.VTfontpath");
    expect_all_of_it();
    std::filesystem::remove("/tmp/.VTfontpath");
}

// A refusal returns at once; only a change that was tried composes the list again.
TEST_F(FontPath, ARefusedChangeDoesNotComposeThePath) {
    if (is_root()) GTEST_SKIP() << "the superuser's path is always composed";
    ::unsetenv("HOME");
    const auto store = main_store();
    const GW_STRING element("/x/");
    GW_LIST<GW_STRING> list;
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::SESSION_FP, 1), 0);
    EXPECT_EQ(store->set_font_path(GWFontPath::SESSION_FP, &list), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::USER_APPEND_FP, 1), 0);
    EXPECT_EQ(store->insert_after_pos(GWFontPath::HOST_FP, &element, -1), 0);
    EXPECT_TRUE(elements(*store, GWFontPath::ALL_FP).empty());
    EXPECT_EQ(store->insert_after_pos(GWFontPath::USER_APPEND_FP, &element, -1), 0) << "no file to write";
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), elements(*store, GWFontPath::INSTALLATION_FP));
}

TEST_F(FontPath, WithoutAHomeAnUserHasNoComposedPath) {
    const gw::test::Session session;
    ::unsetenv("HOME");
    const auto store = main_store();
    unsigned count = 0;
    if (is_root()) {
        EXPECT_FALSE(elements(*store, GWFontPath::ALL_FP).empty());
    } else {
        EXPECT_TRUE(elements(*store, GWFontPath::ALL_FP).empty());
        EXPECT_FALSE(elements(*store, GWFontPath::INSTALLATION_FP).empty());
    }
    EXPECT_NE(store->get_fpe_list(GWFontPath::SESSION_FP, count), nullptr);
}

TEST_F(FontPath, TheLocalesFileIsReadAndComposedInOrder) {
    const char* locale = std::setlocale(LC_MESSAGES, nullptr);
    const std::string file = std::string("/usr/vantor/lib/locale/") + locale + "/VTfontpath";
    if (!is_root()) GTEST_SKIP() << "an ordinary user cannot write the installation";
    write(file, "/la/\n\n/lp/\n");
    write("/etc/vantor/server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/h1/,/h2/\n");
    const auto store = main_store();
    EXPECT_EQ(elements(*store, GWFontPath::LOCALE_APPEND_FP), Texts{"/la/"});
    EXPECT_EQ(elements(*store, GWFontPath::LOCALE_PREPEND_FP), Texts{"/lp/"});
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), (Texts{"/lp/", "/h1/", "/h2/", "/la/"}));
    std::filesystem::remove(file);
}

// --- refusals ----------------------------------------------------------------

TEST_F(FontPath, RefusesWhatNobodyMayChange) {
    const auto store = main_store();
    const GW_STRING element("/x/");
    GW_LIST<GW_STRING> list;
    const Texts all = elements(*store, GWFontPath::ALL_FP);
    for (const int type : {2, 3, 4, 8}) {
        const auto t = static_cast<GWFontPath::TYPE>(type);
        EXPECT_EQ(store->insert_after_pos(t, &element, 0), 0) << type;
        EXPECT_EQ(store->set_font_path(t, &list), 0) << type;
        EXPECT_EQ(store->delete_pos(t, 1), 0) << type;
        EXPECT_EQ(store->is_writeable(t), 0) << type;
    }
    EXPECT_EQ(store->set_font_path(GWFontPath::SESSION_FP, &list), 0);
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), all);
}

TEST_F(FontPath, RefusesBadArguments) {
    const auto store = own_store("/a/");
    const GW_STRING element("/x/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::INSTALLATION_FP, &element, -2), 0);
    EXPECT_EQ(store->insert_after_pos(GWFontPath::INSTALLATION_FP, nullptr, 0), 0);
    EXPECT_EQ(store->set_font_path(GWFontPath::INSTALLATION_FP, nullptr), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, 0), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, -2), 0);
    EXPECT_EQ(elements(*store, 0), Texts{"/a/"});
}

TEST_F(FontPath, EachUserIsRefusedTheOthersLists) {
    const auto store = main_store();
    const GW_STRING element("/x/");
    const auto refused = is_root() ? std::vector{GWFontPath::USER_PREPEND_FP, GWFontPath::USER_APPEND_FP}
                                   : std::vector{GWFontPath::INSTALLATION_FP, GWFontPath::HOST_FP};
    for (const auto t : refused) {
        EXPECT_EQ(store->insert_after_pos(t, &element, -1), 0) << t;
        EXPECT_EQ(store->delete_pos(t, 1), 0) << t;
    }
    const auto other = own_store("/a/");
    for (const auto t : {GWFontPath::HOST_FP, GWFontPath::USER_PREPEND_FP, GWFontPath::USER_APPEND_FP}) {
        EXPECT_EQ(other->insert_after_pos(t, &element, -1), 0) << t;
    }
    EXPECT_EQ(store->is_writeable(GWFontPath::SESSION_FP), is_root() ? 0 : 1);
    EXPECT_EQ(store->is_writeable(GWFontPath::INSTALLATION_FP), is_root() ? 1 : 0);
}

TEST_F(FontPath, WithoutADisplayTheSessionIsRefused) {
    const auto store = own_store("/a/");
    const GW_STRING element("/x/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::SESSION_FP, 1), 0);
    EXPECT_TRUE(elements(*store, GWFontPath::SESSION_FP).empty());
}

// --- the configuration, as the superuser -------------------------------------

class ConfiguredFontPath : public FontPath {
  protected:
    void SetUp() override {
        if (!is_root()) GTEST_SKIP() << "the configuration is the superuser's";
    }
    static GW_LIST<GW_STRING>& list_of(GW_LIST<GW_STRING>& list, const Texts& texts) {
        for (const std::string& text : texts) list.append(new GW_STRING(text.c_str()));
        return list;
    }
    static constexpr const char* HOST_DB = "/etc/vantor/server/etc/VTconfig";
};

TEST_F(ConfiguredFontPath, InsertingWritesThrough) {
    const auto store = own_store("/a/,/b/");
    const GW_STRING element("/new/");
    for (const int pos : {0, 1, -1, 50}) {
        EXPECT_EQ(store->insert_after_pos(GWFontPath::INSTALLATION_FP, &element, pos), 1) << pos;
    }
    EXPECT_EQ(elements(*store, 0), (Texts{"/new/", "/new/", "/a/", "/b/", "/new/", "/new/"}));
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/new/,/new/,/a/,/b/,/new/,/new/\n");
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), elements(*store, 0));
}

TEST_F(ConfiguredFontPath, DeletingWritesThroughDownToTheEmptyValue) {
    const auto store = own_store("/a/,/b/");
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, 3), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, -1), 1);
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/\n");
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, 1), 1);
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t\n");
    EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, 1), 0);
    EXPECT_TRUE(elements(*store, 0).empty());
}

TEST_F(ConfiguredFontPath, SettingReplacesAll) {
    const auto store = own_store("/a/,/b/");
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    EXPECT_EQ(store->set_font_path(GWFontPath::INSTALLATION_FP, &list_of(list, {"/x/", "/y/", "/z/"})), 1);
    EXPECT_EQ(elements(*store, 0), (Texts{"/x/", "/y/", "/z/"}));
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/x/,/y/,/z/\n");
}

// A database without a font path would get the default one when it is read again.
TEST_F(ConfiguredFontPath, SettingAnEmptyPathChangesTheListOnly) {
    const auto store = own_store("/a/,/b/");
    GW_LIST<GW_STRING> nothing;
    EXPECT_EQ(store->set_font_path(GWFontPath::INSTALLATION_FP, &nothing), 1);
    EXPECT_TRUE(elements(*store, 0).empty());
    EXPECT_EQ(own_config(), "XDISPLAY.0.fontpath:\t/a/,/b/\n");
}

TEST_F(ConfiguredFontPath, AFailedWriteTakesTheChangeBack) {
    const auto store = own_store("/a/,/b/");
    std::filesystem::remove_all(own_root());
    const GW_STRING element("/new/");
    for (const int pos : {0, 1, -1})
        EXPECT_EQ(store->insert_after_pos(GWFontPath::INSTALLATION_FP, &element, pos), 0) << pos;
    for (const int pos : {1, 2, -1}) EXPECT_EQ(store->delete_pos(GWFontPath::INSTALLATION_FP, pos), 0) << pos;
    EXPECT_EQ(elements(*store, 0), (Texts{"/a/", "/b/"}));
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), (Texts{"/a/", "/b/"}));
    EXPECT_EQ(store->is_writeable(GWFontPath::INSTALLATION_FP), 0);
}

TEST_F(ConfiguredFontPath, TheHostsPathStartsFromTheInstallations) {
    write(MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/,/b/\n");
    const auto store = main_store();
    EXPECT_EQ(store->is_writeable(GWFontPath::HOST_FP), 1) << "its directory is made";
    const GW_STRING element("/new/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::HOST_FP, &element, 1), 1);
    EXPECT_EQ(TempDir::read_bytes(HOST_DB), "XDISPLAY.0.fontpath:\t/a/,/new/,/b/\n");
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), (Texts{"/a/", "/new/", "/b/"}));
    EXPECT_EQ(store->delete_pos(GWFontPath::HOST_FP, 1), 1);
    EXPECT_EQ(TempDir::read_bytes(HOST_DB), "XDISPLAY.0.fontpath:\t/new/,/b/\n");
}

// The copied elements are removed by position while the positions change, so every second one stays.
TEST_F(ConfiguredFontPath, AFailedHostWriteLeavesEveryOtherSeed) {
    write(MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/,/b/,/c/,/d/\n");
    const auto store = main_store();
    std::filesystem::create_directories(HOST_DB);  // a directory with the database's name cannot be written
    const GW_STRING element("/new/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::HOST_FP, &element, -1), 0);
    EXPECT_EQ(elements(*store, GWFontPath::HOST_FP), (Texts{"/b/", "/d/"}));
}

TEST_F(ConfiguredFontPath, AFailedHostDeletionLeavesEveryOtherSeed) {
    write(MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/,/b/,/c/,/d/\n");
    const auto store = main_store();
    std::filesystem::create_directories(HOST_DB);
    EXPECT_EQ(store->delete_pos(GWFontPath::HOST_FP, 2), 0);
    EXPECT_EQ(elements(*store, GWFontPath::HOST_FP), (Texts{"/b/", "/d/"}));
    EXPECT_EQ(elements(*store, GWFontPath::ALL_FP), (Texts{"/b/", "/d/"}));
}

TEST_F(ConfiguredFontPath, AFailedHostSettingChangesNothing) {
    write(MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/\n");
    const auto store = main_store();
    std::filesystem::create_directories(HOST_DB);
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    EXPECT_EQ(store->set_font_path(GWFontPath::HOST_FP, &list_of(list, {"/x/"})), 0);
    EXPECT_EQ(elements(*store, GWFontPath::INSTALLATION_FP), Texts{"/a/"});
    EXPECT_TRUE(elements(*store, GWFontPath::HOST_FP).empty());
}

TEST_F(ConfiguredFontPath, StrangeElementsComeBackFromTheDatabase) {
    const auto store = own_store("/a/");
    const Texts names = {"/a b/",          "/$(x)/",        "/it's/",    "/\"q/",
                         "/two\nlines/",   "/back\\slash/", "/caf\xe9/", "/" + std::string(1100, 'x') + "/",
                         "tcp/server:7100"};
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    ASSERT_EQ(store->set_font_path(GWFontPath::INSTALLATION_FP, &list_of(list, names)), 1);
    EXPECT_EQ(elements(GWFontPath(own_root().c_str()), GWFontPath::INSTALLATION_FP), names);
}

TEST_F(ConfiguredFontPath, SettingTheHostsPathChangesTheInstallationsList) {
    write(MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/\n");
    const auto store = main_store();
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    EXPECT_EQ(store->set_font_path(GWFontPath::HOST_FP, &list_of(list, {"/x/", "/y/"})), 1);
    EXPECT_EQ(TempDir::read_bytes(HOST_DB), "XDISPLAY.0.fontpath:\t/x/,/y/\n");
    EXPECT_EQ(elements(*store, GWFontPath::INSTALLATION_FP), (Texts{"/x/", "/y/"}));
    EXPECT_TRUE(elements(*store, GWFontPath::HOST_FP).empty());
}

// --- the session -------------------------------------------------------------

class SessionFontPath : public FontPath {
  protected:
    /// A directory that the server accepts.
    std::string font_dir(const char* name) const {
        const std::string path = home.make_dir(name);
        home.write(std::string(name) + "/fonts.dir", "0\n");
        ::chmod(home.c_str(), 0755);
        return path;
    }
    gw::test::Session session;
};

TEST_F(SessionFontPath, IsTheServers) {
    EXPECT_EQ(elements(*main_store(), GWFontPath::SESSION_FP), session.font_path());
}

TEST_F(SessionFontPath, AnElementGoesToTheServersEndAndStandsTwiceInTheList) {
    const auto store = main_store();
    const std::string dir = font_dir("fonts");
    const GW_STRING element(dir.c_str());
    Texts expected = elements(*store, GWFontPath::SESSION_FP);
    Texts on_server = session.font_path();
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, 0), 1);
    expected.insert(expected.begin(), dir);
    expected.push_back(dir);
    on_server.push_back(dir);
    EXPECT_EQ(elements(*store, GWFontPath::SESSION_FP), expected);
    EXPECT_EQ(session.font_path(), on_server);
    EXPECT_EQ(store->delete_pos(GWFontPath::SESSION_FP, 1), 1);
    on_server.pop_back();
    EXPECT_EQ(session.font_path(), on_server);
    EXPECT_EQ(elements(*store, GWFontPath::SESSION_FP).back(), dir);
}

TEST_F(SessionFontPath, WhatTheServerRefusesIsTakenBack) {
    const auto store = main_store();
    const Texts before = elements(*store, GWFontPath::SESSION_FP);
    const std::string longest = "/" + std::string(1100, 'x') + "/";
    for (const char* refused : {"/nonexistent/", "/tmp/$(touch oops)/", "/tmp/it's; here/", "/two\nlines/",
                                "tcp/nowhere.invalid:7100", longest.c_str()}) {
        const GW_STRING element(refused);
        EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 0) << refused;
    }
    EXPECT_EQ(elements(*store, GWFontPath::SESSION_FP), before);
    EXPECT_EQ(session.font_path(), before);
}

// What someone else keeps under the name of the file for complaints is not written into.
TEST_F(SessionFontPath, WithAForeignFileForComplaintsTheSessionIsLeftAlone) {
    const auto store = main_store();
    const Texts before = session.font_path();
    const GW_STRING element(font_dir("fonts").c_str());
    std::filesystem::create_directory("/tmp/errors");
    const gw::test::HeardFailures heard;
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 0);
    EXPECT_NE(heard.text().find("/tmp/errors"), std::string::npos);
    EXPECT_EQ(session.font_path(), before);
    EXPECT_EQ(elements(*store, GWFontPath::SESSION_FP), before);
    std::filesystem::remove("/tmp/errors");
}

TEST_F(SessionFontPath, AFileForComplaintsThatIsALinkIsNotWrittenThrough) {
    const auto store = main_store();
    home.write("victim", "precious");
    std::filesystem::create_symlink(home.file("victim"), "/tmp/errors");
    const GW_STRING element("/nonexistent/");
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 0);
    EXPECT_EQ(home.read("victim"), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink("/tmp/errors"));
}

TEST_F(SessionFontPath, ADirectoryWithAStrangeNameWorks) {
    const auto store = main_store();
    const std::string dir = font_dir("a b $(x) 'q'");
    const GW_STRING element(dir.c_str());
    EXPECT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 1);
    EXPECT_EQ(session.font_path().back(), dir);
}

TEST_F(SessionFontPath, DeletingAnswersOneWhateverTheServerSays) {
    const auto store = main_store();
    const int count = static_cast<int>(elements(*store, GWFontPath::SESSION_FP).size());
    EXPECT_EQ(store->delete_pos(GWFontPath::SESSION_FP, count + 1), 0);
    EXPECT_EQ(store->delete_pos(GWFontPath::SESSION_FP, -1), 1);
    EXPECT_EQ(elements(*store, GWFontPath::SESSION_FP).size(), static_cast<std::size_t>(count) - 1);
}

TEST_F(SessionFontPath, RehashingHasTheServerReadAnIndexAgain) {
    const auto store = main_store();
    const std::string dir = font_dir("fonts");
    const GW_STRING element(dir.c_str());
    ASSERT_EQ(store->insert_after_pos(GWFontPath::SESSION_FP, &element, -1), 1);
    GW_FILE_SPEC("fonts.dir", dir.c_str(), 0, 7).remove();
    home.write("fonts/fonts.dir", "1\nx.pcf -test-rehashed-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
    std::filesystem::last_write_time(dir + "fonts.dir",
                                     std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    store->rehash_session_fp();
    int count = 0;
    char** names = XListFonts(session.display(), "-test-rehashed-*", 10, &count);
    EXPECT_GE(count, 1);
    XFreeFontNames(names);
}

}  // namespace
