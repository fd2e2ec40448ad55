// SPDX-License-Identifier: MIT
//
// The font path dialog where windows show the running server: the state of each element, what other programs
// change, what is refused, and the path on the server. Everybody has it, for the part that they may change.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "support/own_font_dirs.h"
#include "widget/dialogs_test_support.h"

// X headers come last.
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

namespace fs = std::filesystem;
using gw::test::find;
using gw::test::make_index;
using gw::test::press;
using gw::test::pump;
using gw::test::pump_until;
using gw::test::run;
using gw::test::TempDir;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* FONT = "/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz";

bool is_root() {
    return ::geteuid() == 0;
}

/// The string's text. The toolkit's own way to put tabs into it does not work for strings with renditions.
std::string with_tabs(XmString string) {
    XmStringContext context = nullptr;
    XmStringInitContext(&context, string);
    std::string text;
    unsigned length = 0;
    XtPointer value = nullptr;
    for (XmStringComponentType type = 0;
         (type = XmStringGetNextTriple(context, &length, &value)) != XmSTRING_COMPONENT_END;) {
        const gw::XtOwned<char> owned(static_cast<char*>(value));
        if (type == XmSTRING_COMPONENT_TAB) text += '\t';
        if (type == XmSTRING_COMPONENT_TEXT || type == XmSTRING_COMPONENT_LOCALE_TEXT)
            text += std::string(owned.get(), length);
    }
    XmStringFreeContext(context);
    return text;
}

constexpr int MANY_CHANGES = 100;
int changes_to_come = 0;

/// Another program: what it has put at the end of the server's path it puts at the beginning, or the other
/// way round.
void change_path_again() {
    if (changes_to_come == 0) return;
    --changes_to_come;
    std::vector<std::string> path = gw::served_path();
    std::rotate(path.begin(), path.end() - 1, path.end());
    (void)gw::ServerUse::view()->set_font_path(path);
}

class LivePath : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        gw::test::home();
        // Before the windows see the change.
        gw::served_path_changes().connect(change_path_again);
        gw::test::start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void SetUp() override {
        // The server of these tests runs as another user.
        ::chmod(dirs.c_str(), 0755);
        gw::ask_server();
        before_ = gw::served_path();
        ASSERT_TRUE(press(find(wi_toplevel, "_modify_fp_dlg_button")));
        ASSERT_TRUE(pump_until([] { return gw::test::is_viewable(wi_modify_fp_dlg); }));
    }
    void TearDown() override {
        XtUnmanageChild(wi_warning_dlg);
        press(part("_cancel_button"));
        const gw::ServerUse server;
        (void)gw::ServerUse::view()->set_font_path(before_);
    }

    static Widget part(const char* name) { return find(wi_modify_fp_dlg, name); }
    static Widget list() { return part("_fpe_list"); }
    /// The lines of the list, with tabs between the columns.
    static std::vector<std::string> rows() {
        XmStringTable strings = nullptr;
        int count = 0;
        XtVaGetValues(list(), XmNitems, &strings, XmNitemCount, &count, nullptr);
        std::vector<std::string> lines;
        for (int i = 0; i < count; ++i) lines.push_back(with_tabs(strings[i]));
        return lines;
    }
    /// The line of the element; "" when it has none.
    static std::string row_of(const std::string& element) {
        for (const std::string& row : rows()) {
            if (row.ends_with('\t' + element)) return row;
        }
        return "";
    }
    static int position_of(const std::string& element) {
        const std::vector<std::string> all = rows();
        const auto found = std::find(all.begin(), all.end(), row_of(element));
        return found == all.end() ? 0 : static_cast<int>(found - all.begin()) + 1;
    }
    static std::string state_of(const std::string& element) {
        const std::string row = row_of(element);
        return row.substr(0, row.find('\t'));
    }
    static bool becomes(const std::string& element, const std::string& state) {
        return pump_until([&] { return state_of(element) == state; });
    }
    static void select(const std::string& element) {
        XmListSelectPos(list(), position_of(element), True);
        pump();
    }
    static std::string selected() {
        const int position = gw::selected_position(list());
        if (position == 0) return "";
        const std::string row = rows()[static_cast<std::size_t>(position) - 1];
        return row.substr(row.rfind('\t') + 1);
    }
    static bool sensitive(const char* name) { return XtIsSensitive(part(name)) != False; }
    static std::string message() { return gw::label_of(part("_msg_label")); }
    static std::string notes() { return gw::wrapped_text_of(part("_state_text")); }
    static bool add(const std::string& element) {
        XmTextFieldSetString(part("_new_fp_textfield"), gw::name_arg(element.c_str()));
        return press(part("_add_new_button"));
    }
    static bool has_server(const std::string& element) {
        gw::ask_server();
        const std::vector<std::string>& path = gw::served_path();
        return std::find(path.begin(), path.end(), element) != path.end();
    }
    /// A directory with an index of one font.
    std::string font_directory(const std::string& name) {
        const std::string dir = dirs.make_dir(name);
        fs::copy(FONT, dir);
        EXPECT_TRUE(make_index(dir));
        return dir;
    }
    /// Configures these elements too, as another program would, and waits until the dialog shows them.
    void configure(const std::vector<std::string>& elements) {
        own.write(elements);
        ASSERT_TRUE(pump_until([&] { return !row_of(elements.back()).empty(); }));
    }

    TempDir dirs;
    gw::test::OwnFontPath own{gw::test::home().path()};
    std::vector<std::string> before_;
};

TEST_F(LivePath, EveryElementHasItsStateInWords) {
    const std::string served = font_directory("served");
    const std::string not_served = font_directory("not_served");
    const std::string empty = dirs.make_dir("empty");
    const std::string gone = dirs.file("gone/");
    ASSERT_TRUE(run("xset fp+ " + served));
    configure({served, not_served, empty, gone});
    EXPECT_TRUE(becomes(served, "On the server"));
    EXPECT_EQ(state_of(not_served), "Not on the server");
    EXPECT_EQ(state_of(empty), "No fonts.dir");
    EXPECT_EQ(state_of(gone), "No such directory");
    EXPECT_EQ(row_of("/usr/vantor/lib/X11/fonts/misc/").substr(0, 13), "On the server");
    EXPECT_THAT(row_of("built-ins"), HasSubstr("server only"));
}

TEST_F(LivePath, ALineCanBeCopied) {
    select("built-ins");
    XtCallActionProc(list(), "ListCopyToClipboard", nullptr, nullptr, 0);
    EXPECT_EQ(selected(), "built-ins");
}

/// Whether the list shows a pixel of that colour.
bool shows_colour(Widget list, const char* name) {
    XColor wanted;
    XColor exact;
    if (XAllocNamedColor(display, DefaultColormapOfScreen(screen), name, &wanted, &exact) == 0) return false;
    XSync(display, False);
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(list, XmNwidth, &width, XmNheight, &height, nullptr);
    XImage* image = XGetImage(display, XtWindow(list), 0, 0, width, height, AllPlanes, ZPixmap);
    bool found = false;
    for (int y = 0; y < height && !found; ++y) {
        for (int x = 0; x < width && !found; ++x) found = XGetPixel(image, x, y) == wanted.pixel;
    }
    XDestroyImage(image);
    return found;
}

TEST_F(LivePath, AStateHasAColourToo) {
    XmListDeselectAllItems(list());
    EXPECT_TRUE(pump_until([] { return shows_colour(list(), "#14662a"); })) << "on the server";
    EXPECT_FALSE(shows_colour(list(), "#b0001e"));
    configure({dirs.file("gone/")});
    XmListSetBottomPos(list(), 0);
    EXPECT_TRUE(pump_until([] { return shows_colour(list(), "#b0001e"); })) << "no such directory";
}

TEST_F(LivePath, WhatAnotherProgramDoesToTheServersPathIsShown) {
    const std::string dir = font_directory("fonts");
    configure({dir});
    ASSERT_TRUE(becomes(dir, "Not on the server"));
    select(dir);
    EXPECT_THAT(notes(), HasSubstr("Not on the server"));
    ASSERT_TRUE(run("xset fp+ " + dir));
    EXPECT_TRUE(becomes(dir, "On the server"));
    EXPECT_EQ(selected(), dir);
    EXPECT_THAT(notes(), Not(HasSubstr("Not on the server")));
    ASSERT_TRUE(run("xset fp- " + dir));
    EXPECT_TRUE(becomes(dir, "Not on the server"));
    const std::string other = font_directory("other");
    ASSERT_TRUE(run("xset fp+ " + other));
    EXPECT_TRUE(becomes(other, "On the server"));
    EXPECT_THAT(row_of(other), HasSubstr("server only"));
    EXPECT_EQ(selected(), dir);
    select(other);
    EXPECT_FALSE(sensitive("_delete_button"));
    EXPECT_THAT(notes(), HasSubstr("The next session will not have it."));
    ASSERT_TRUE(run("xset fp- " + other));
    EXPECT_TRUE(pump_until([&] { return row_of(other).empty(); }));
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(notes(), "");
}

/// Each look at the path would find another one, and be the reason for the next look.
TEST_F(LivePath, APathThatChangesAgainAndAgainLeavesTimeForTheUser) {
    const gw::ServerUse server;
    const std::string dir = font_directory("fonts");
    ASSERT_TRUE(run("xset fp+ " + dir));
    changes_to_come = MANY_CHANGES;
    gw::ask_server();
    EXPECT_GT(changes_to_come, MANY_CHANGES - 10) << "the user's turn comes while the other one goes on";
    EXPECT_LT(changes_to_come, MANY_CHANGES);
    changes_to_come = 0;
    EXPECT_TRUE(becomes(dir, "On the server"));
}

TEST_F(LivePath, WhatAnotherProgramDoesToADirectoryIsShown) {
    const std::string dir = dirs.file("later/");
    configure({dir});
    ASSERT_TRUE(becomes(dir, "No such directory"));
    select(dir);
    dirs.make_dir("later");
    EXPECT_TRUE(becomes(dir, "No fonts.dir"));
    fs::copy(FONT, dir);
    ASSERT_TRUE(make_index(dir));
    EXPECT_TRUE(becomes(dir, "Not on the server"));
    EXPECT_EQ(selected(), dir);
    fs::remove_all(dir);
    EXPECT_TRUE(becomes(dir, "No such directory"));
    EXPECT_EQ(selected(), dir);
}

TEST_F(LivePath, WhatAnotherProgramStoresIsShownUnlessThereAreEdits) {
    const std::string one = font_directory("one");
    const std::string two = font_directory("two");
    configure({one});
    select(one);
    configure({one, two});
    EXPECT_EQ(selected(), one);
    select(two);
    ASSERT_TRUE(press(part("_move_up_button")));
    EXPECT_LT(position_of(two), position_of(one));
    own.write({one});
    EXPECT_TRUE(pump_until([] { return message().starts_with("Another program has changed"); }));
    EXPECT_LT(position_of(two), position_of(one)) << "the edits stay";
    ASSERT_TRUE(press(part("_reset_button")));
    EXPECT_EQ(row_of(two), "");
    EXPECT_NE(row_of(one), "");
    EXPECT_EQ(message(), "");
}

TEST_F(LivePath, EditsAndWhatAnotherProgramStoresComeTogether) {
    const std::string one = font_directory("one");
    const std::string two = font_directory("two");
    const std::string three = font_directory("three");
    configure({one});
    ASSERT_TRUE(add(two));
    own.write({one, three});
    EXPECT_TRUE(pump_until([] { return message().starts_with("Another program has changed"); }));
    ASSERT_TRUE(press(part("_apply_button")));
    for (const std::string& element : {one, two, three}) {
        EXPECT_THAT(own.bytes(), HasSubstr(element));
        EXPECT_NE(row_of(element), "") << element;
    }
}

TEST_F(LivePath, WhatCannotBeAddedIsRefusedWithTheReason) {
    const std::string fonts = font_directory("fonts");
    configure({fonts});
    fs::create_symlink("fonts", dirs.file("link"));
    const std::vector<std::string> all = rows();
    const struct {
        std::string element;
        std::string why;
    } refused[] = {
        {"", "Type the name of a directory first."},
        {"/fonts/a,b/", "a directory of a font path cannot have a comma in its name"},
        {dirs.file("gone"), "There is no such directory: " + dirs.file("gone")},
        {"catalogue:" + dirs.file("gone"), "There is no such directory: " + dirs.file("gone")},
        {dirs.file("fonts/fonts.dir"), "There is no such directory: " + dirs.file("fonts/fonts.dir")},
        {"relative/fonts", "The name of a directory begins with \"/\"."},
        {fonts, "The font path has this directory already: " + fonts},
        {dirs.file("link"), "The font path has this directory already: " + fonts},
        {dirs.file("./fonts"), "The font path has this directory already: " + fonts},
        {'/' + std::string(255, 'x'), "The X server takes at most 255 bytes."},
    };
    for (const auto& [element, why] : refused) {
        ASSERT_TRUE(add(element));
        EXPECT_EQ(message(), why);
        EXPECT_EQ(rows(), all) << element;
        EXPECT_FALSE(sensitive("_apply_button")) << element;
    }
}

TEST_F(LivePath, OtherAttributesMakeAnotherElement) {
    const std::string fonts = font_directory("fonts");
    configure({fonts});
    ASSERT_TRUE(add(fonts + ":unscaled"));
    EXPECT_EQ(message(), "");
    EXPECT_EQ(selected(), fonts + ":unscaled");
    EXPECT_TRUE(sensitive("_apply_button"));
    ASSERT_TRUE(add(fonts + ":unscaled"));
    EXPECT_EQ(message(), "The font path has this directory already: " + fonts + ":unscaled");
    ASSERT_TRUE(add("tcp/fonts.example:7100"));
    EXPECT_EQ(selected(), "tcp/fonts.example:7100") << "only the server can say whether it is there";
}

TEST_F(LivePath, ApplyNowStoresThePathAndPutsItOnTheServer) {
    const std::string fonts = font_directory("fonts");
    ASSERT_TRUE(add(fonts));
    EXPECT_TRUE(becomes(fonts, "Not on the server"));
    ASSERT_TRUE(press(part("_apply_now_button")));
    EXPECT_TRUE(has_server(fonts));
    EXPECT_EQ(state_of(fonts), "On the server");
    EXPECT_EQ(notes(), "The X server has the whole font path now.");
    EXPECT_THAT(own.bytes(), HasSubstr(fonts));
    EXPECT_FALSE(sensitive("_apply_button"));
    select(fonts);
    ASSERT_TRUE(press(part("_delete_button")));
    EXPECT_THAT(row_of(fonts), HasSubstr("server only"));
    ASSERT_TRUE(press(part("_apply_now_button")));
    EXPECT_FALSE(has_server(fonts)) << "what the user has taken out leaves the server";
    EXPECT_THAT(notes(), HasSubstr("Taken off the X server's path:\n" + fonts));
    EXPECT_THAT(own.bytes(), Not(HasSubstr(fonts)));
}

TEST_F(LivePath, ApplyNowTellsWhatTheServerDoesNotTakeAndWhy) {
    const std::string good = font_directory("good");
    const std::string refused = font_directory("refused");
    // A last line with a single word makes the server refuse the directory.
    dirs.write("refused/fonts.dir", "1\nword");
    const std::string gone = dirs.file("gone/");
    configure({refused, gone, good});
    ASSERT_TRUE(press(part("_apply_now_button")));
    EXPECT_TRUE(has_server(good));
    EXPECT_FALSE(has_server(refused));
    EXPECT_THAT(notes(), HasSubstr("The X server does not have these elements:\n" + refused + ": "));
    EXPECT_THAT(notes(), HasSubstr("\n" + gone + ": There is no "));
    EXPECT_THAT(notes(), Not(HasSubstr(good)));
}

/// Nothing but the server's refusal tells that there is no such font server.
TEST_F(LivePath, AFontServerThatTheServerRefusesIsSaidToBeRefused) {
    const std::string nobody = "unix/" + dirs.file("nobody") + ":-1";
    configure({nobody});
    EXPECT_EQ(state_of(nobody), "Not on the server");
    ASSERT_TRUE(add("relative/fonts"));
    EXPECT_NE(message(), "");
    ASSERT_TRUE(press(part("_apply_now_button")));
    EXPECT_THAT(notes(), HasSubstr("The X server does not have these elements:\n" + nobody +
                                   ": the X server refuses it"));
    EXPECT_EQ(message(), "") << "that was about something else";
}

TEST_F(LivePath, ADeadElementOnTheServerDoesNotKeepOthersFromIt) {
    const std::string good = font_directory("good");
    const std::string dead = font_directory("dead");
    ASSERT_TRUE(run("xset fp+ " + dead));
    fs::remove_all(dead);
    configure({good});
    ASSERT_TRUE(press(part("_apply_now_button")));
    EXPECT_TRUE(has_server(good));
    EXPECT_FALSE(has_server(dead));
    EXPECT_THAT(notes(), HasSubstr("Taken off the X server's path:\n" + dead));
}

TEST_F(LivePath, TheSuperuserKeepsTheChoiceOfInstallations) {
    EXPECT_EQ(part("radioBox") != nullptr, is_root());
    EXPECT_EQ(gw::label_of(part("_fpe_list_label")),
              is_root() ? "Current Font Path Listing For /usr/vantor" : "The font path of your sessions:");
}

// --- ordinary users ----------------------------------------------------------

class UsersLivePath : public LivePath {
  protected:
    void SetUp() override {
        if (is_root()) GTEST_SKIP() << "for an ordinary user";
        LivePath::SetUp();
    }
    void TearDown() override {
        if (!is_root()) LivePath::TearDown();
    }
};

TEST_F(UsersLivePath, OnlyTheirOwnElementsCanBeChanged) {
    const std::string fonts = font_directory("fonts");
    configure({fonts});
    const std::string installed = "/usr/vantor/lib/X11/fonts/misc/";
    EXPECT_THAT(row_of(installed), HasSubstr("\tinstallation\t"));
    EXPECT_THAT(row_of(fonts), HasSubstr("\tyours, at the end\t"));
    select(installed);
    for (const char* button : {"_move_up_button", "_move_down_button", "_delete_button"})
        EXPECT_FALSE(sensitive(button)) << button;
    EXPECT_THAT(notes(), HasSubstr("You cannot change this element."));
    select(fonts);
    EXPECT_TRUE(sensitive("_delete_button"));
    EXPECT_TRUE(sensitive("_move_up_button"));
    EXPECT_FALSE(sensitive("_move_down_button"));
}

TEST_F(UsersLivePath, AnElementMovesInFrontOfAllOthers) {
    const std::string one = font_directory("one");
    const std::string two = font_directory("two");
    configure({one, two});
    select(one);
    ASSERT_TRUE(press(part("_move_up_button")));
    EXPECT_EQ(position_of(one), 1);
    EXPECT_THAT(row_of(one), HasSubstr("\tyours, in front\t"));
    EXPECT_FALSE(sensitive("_move_up_button"));
    ASSERT_TRUE(press(part("_apply_button")));
    EXPECT_EQ(own.bytes(), two + "\n\n" + one + '\n');
    EXPECT_EQ(selected(), one);
    unsigned count = 0;
    const GW_LIST<GW_STRING>& all = *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count);
    EXPECT_EQ(all.get_elem_at_pos(1)->get_str(), one);
    select(one);
    ASSERT_TRUE(press(part("_move_down_button")));
    ASSERT_TRUE(press(part("_apply_button")));
    EXPECT_EQ(own.bytes(), one + '\n' + two + '\n');
}

TEST_F(UsersLivePath, ANameThatTheFileCannotHoldIsRefused) {
    const std::string odd = dirs.make_dir("two  blanks");
    ASSERT_TRUE(add(odd));
    EXPECT_EQ(message(), "this name does not fit into a font path file");
    EXPECT_EQ(row_of(odd), "");
}

TEST_F(UsersLivePath, AFileThatCannotBeWrittenIsSaid) {
    const std::string fonts = font_directory("fonts");
    configure({fonts});
    ::chmod(gw::test::home().file(".VTfontpath").c_str(), 0444);
    select(fonts);
    ASSERT_TRUE(press(part("_delete_button")));
    ASSERT_TRUE(press(part("_apply_now_button")));
    ::chmod(gw::test::home().file(".VTfontpath").c_str(), 0644);
    EXPECT_TRUE(XtIsManaged(wi_warning_dlg));
    EXPECT_THAT(gw::test::message_of(wi_warning_dlg), HasSubstr("Cannot update font path"));
    EXPECT_NE(row_of(fonts), "") << "the stored path is shown again";
}

}  // namespace
