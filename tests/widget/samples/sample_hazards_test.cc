// SPDX-License-Identifier: MIT
//
// What can go wrong while a sample is drawn: fonts that the server lists but cannot open, names that a font
// set takes for several names, events that are handled during the work, and sizes that are not whole points.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/font_lists.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_font.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"
#include "support/font_maker.h"
#include "support/library_leaks.h"

#include "widget/dialogs_test_support.h"

#include <X11/Xproto.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

using namespace gw::test;
using Texts = std::vector<std::string>;

constexpr const char* DEFAULT_TEXT = "Aa Bb Cc Xx Yy Zz 0123456789";
constexpr const char* STAGED_BITMAPS = "/usr/vantor/lib/X11/fonts/75dpi/";
constexpr const char* STAGED_MISC = "/usr/vantor/lib/X11/fonts/misc/";

Widget pulldown_of(Widget menu) {
    Widget pulldown = nullptr;
    XtVaGetValues(menu, XmNsubMenuId, &pulldown, nullptr);
    return pulldown;
}

class Hazards : public testing::Test {
  protected:
    void SetUp() override {
        start_at_home();
        sample_text = DEFAULT_TEXT;
        size_menu = find(wi_toplevel, "_size_option_menu");
        res_menu = find(wi_toplevel, "_res_option_menu");
        select(wi_hrn_list, {outline_position()});
        ASSERT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
    }
    void TearDown() override { select(wi_hrn_list, {}); }
    Widget size_menu = nullptr;
    Widget res_menu = nullptr;
};

/// A directory that is on the server's font path while this object exists.
class ServedDirectory {
  public:
    ServedDirectory() {
        int count = 0;
        char** path = XGetFontPath(display, &count);
        before_.assign(path, path + count);
        XFreeFontPath(path);
        std::filesystem::permissions(dir.path(), static_cast<std::filesystem::perms>(0755));
    }
    ~ServedDirectory() { set(before_); }
    ServedDirectory(const ServedDirectory&) = delete;
    ServedDirectory& operator=(const ServedDirectory&) = delete;
    void serve() const {
        Texts path = before_;
        path.insert(path.begin(), dir.path());
        set(path);
    }
    TempDir dir;

  private:
    static void set(Texts path) {
        std::vector<char*> elements;
        for (std::string& element : path) elements.push_back(element.data());
        XSetFontPath(display, elements.data(), static_cast<int>(elements.size()));
        XSync(display, False);
    }
    Texts before_;
};

/// Xlib leaks about 60 bytes for each font that is listed but cannot be opened.
using LeaksOfXlib = LibraryLeaks;

/// The file of a bitmap font of the installation that the server can draw.
std::string some_font_file() {
    for (const char* dir : {STAGED_BITMAPS, STAGED_MISC}) {
        for (const auto& entry : std::filesystem::directory_iterator(dir)) {
            if (entry.path().extension() == ".pcf") return entry.path().string();
        }
    }
    return {};
}

// --- the server --------------------------------------------------------------

TEST_F(Hazards, AFontThatTheServerListsAndCannotOpenLeavesTheFieldEmpty) {
    const std::string whole = TempDir::read_bytes(some_font_file());
    ASSERT_GT(whole.size(), 2000U);
    const ServedDirectory served;
    const struct {
        const char* family;
        const char* file;
        std::string bytes;
    } cases[] = {{"gwtruncated", "t.pcf", whole.substr(0, whole.size() / 2)},
                 {"gwheaderonly", "h.pcf", whole.substr(0, 12)},
                 {"gwempty", "e.pcf", ""},
                 {"gwnothere", "", ""}};
    std::string index = "4\n";
    for (const auto& c : cases) {
        if (*c.file != '\0') served.dir.write(c.file, c.bytes);
        index +=
            std::string(*c.file != '\0' ? c.file : "n.pcf") + ' ' + bitmap_xlfd(c.family, "120", "75") + '\n';
    }
    served.dir.write("fonts.dir", index);
    served.serve();
    for (const auto& c : cases) {
        select(wi_hrn_list, {outline_position()});
        ASSERT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT) << c.family;
        const gw::Ref<GWFont> font(make_bitmap(c.family, "120"));
        {
            const LeaksOfXlib leaks;
            display_text_in_font(wi_installed_sample_textfield, font.get(), "120", DEFAULT_TEXT);
        }
        EXPECT_EQ(shown_text(wi_installed_sample_textfield), "") << c.family;
        EXPECT_EQ(sample_text, DEFAULT_TEXT) << c.family;
    }
}

XErrorEvent last_error;
int note_error(Display*, XErrorEvent* event) {
    last_error = *event;
    return 7;
}

TEST_F(Hazards, OtherErrorsGoToTheHandlerBefore) {
    const XErrorHandler ours = XSetErrorHandler(note_error);
    EXPECT_EQ(ours, x_error_handler);
    init_sample_text_cb_module();
    XDestroyWindow(display, 0x1fffffff);
    XSync(display, False);
    EXPECT_EQ(last_error.request_code, X_DestroyWindow);
    XErrorEvent event{};
    event.request_code = X_OpenFont;
    last_error = {};
    EXPECT_EQ(x_error_handler(display, &event), 0);
    EXPECT_EQ(last_error.request_code, 0) << "kept from it";
    event.request_code = X_OpenFont + 1;
    EXPECT_EQ(x_error_handler(display, &event), 7);
    XSetErrorHandler(nullptr);
    init_sample_text_cb_module();
}

// --- names -------------------------------------------------------------------

TEST_F(Hazards, ACommaIsPartOfTheName) {
    const ServedDirectory served;
    served.dir.write("fonts.dir", "0\n");
    served.dir.write("fonts.alias", "\"a,b\" -adobe-courier-medium-r-normal--12-120-75-75-m-70-iso8859-1\n");
    served.serve();
    const GWAlias alias("a,b", "-adobe-courier-medium-r-normal--12-120-75-75-m-70-iso8859-1", "/");
    display_text_in_alias(wi_installed_sample_textfield, &alias, DEFAULT_TEXT);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
    const GWAlias two_names("nosuchfont,fixed", "fixed", "/");
    display_text_in_alias(wi_installed_sample_textfield, &two_names, DEFAULT_TEXT);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "") << "not the font behind the comma";
}

TEST_F(Hazards, ANameThatIsNoneLeavesTheFieldEmpty) {
    for (const std::string& name :
         {std::string(), std::string(" "), std::string(","), std::string(13, '-'), std::string(14, '-'),
          std::string(15, '-'), std::string(256, 'n'), std::string(1791, 'n'),
          std::string(8, '-') + std::string(1700, 'n'), std::string(300, ','), std::string("%s%n$()`\n\t\""),
          std::string("caf\xc3\xa9 \xe9\xff")}) {
        display_text_in_alias(wi_installed_sample_textfield, the_alias_list.get_elem_at_pos(1), DEFAULT_TEXT);
        const GWAlias alias(name.c_str(), "fixed", "/");
        display_text_in_alias(wi_installed_sample_textfield, &alias, DEFAULT_TEXT);
        EXPECT_EQ(shown_text(wi_installed_sample_textfield), "")
            << name.substr(0, 40) << " of " << name.size();
    }
    const gw::Ref<GWFont> font(make_outline(std::string(1700, 'f')));
    display_text_in_font(wi_installed_sample_textfield, font.get(), "240", DEFAULT_TEXT);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
}

// --- events that are handled during the work ---------------------------------

/// Runs an action during the next work that handles events.
class Meanwhile {
  public:
    explicit Meanwhile(std::function<void()> action) : action_(std::move(action)) {
        XtAddEventHandler(wi_toplevel, NoEventMask, True, handle, this);
        send();
    }
    ~Meanwhile() { XtRemoveEventHandler(wi_toplevel, NoEventMask, True, handle, this); }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

  private:
    static Atom message() { return XInternAtom(display, "_GLYPHWARD_TEST", False); }
    static void send() {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = XtWindow(wi_toplevel);
        event.xclient.message_type = message();
        event.xclient.format = 32;
        XSendEvent(display, XtWindow(wi_toplevel), False, NoEventMask, &event);
    }
    static void handle(Widget, XtPointer self, XEvent* event, Boolean*) {
        if (event->type != ClientMessage || event->xclient.message_type != message()) return;
        auto& action = static_cast<Meanwhile*>(self)->action_;
        const auto once = std::move(action);
        action = nullptr;
        if (once) once();
    }
    std::function<void()> action_;
};

TEST_F(Hazards, TheLastOfSeveralSelectionsIsShown) {
    show_font_attributes(the_installed_hrn_list.get_elem_at_pos(outline_position())->get_representative(),
                         nullptr);
    {
        const Meanwhile meanwhile([] { select(wi_hrn_list, {bitmap_position()}); });
        select(wi_hrn_list, {outline_position()});
    }
    EXPECT_EQ(chosen(res_menu), "100 X 100");
    EXPECT_NE(gw::label_of(wi_font_xlfd_name).find("courier"), std::string::npos);
    {
        const Meanwhile meanwhile([] { select(wi_hrn_list, {1, 2}); });
        select(wi_hrn_list, {outline_position()});
    }
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
    EXPECT_EQ(gw::label_of(wi_font_xlfd_name), "");
    press(find(wi_attr_dlg, "close_button"));
}

TEST_F(Hazards, ARequestKnowsWhetherANewerOneCame) {
    const GWAlias* alias = the_alias_list.get_elem_at_pos(1);
    EXPECT_TRUE(gw::show_in_alias(wi_installed_sample_textfield, alias, "alone"));
    {
        const Meanwhile meanwhile([] { gw::forget_older_samples(); });
        EXPECT_FALSE(gw::show_in_alias(wi_installed_sample_textfield, alias, "too late"));
    }
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "alone") << "what comes too late is not drawn";
}

TEST_F(Hazards, ATextThatChangesMeanwhileIsSafe) {
    select(wi_hrn_list, {});
    sample_text = std::string(500, 'x');
    const Meanwhile meanwhile([] {
        sample_text = "short";
        sample_text.shrink_to_fit();
    });
    select(wi_hrn_list, {outline_position()});
    const std::string shown = shown_text(wi_installed_sample_textfield);
    EXPECT_TRUE(shown == "short" || shown == std::string(500, 'x')) << shown;
}

TEST_F(Hazards, AnAliasThatGoesMeanwhileIsSafe) {
    auto alias = std::make_unique<GWAlias>("fixed", "fixed", "/");
    const Meanwhile meanwhile([&] { alias.reset(); });
    display_text_in_alias(wi_installed_sample_textfield, alias.get(), DEFAULT_TEXT);
    EXPECT_EQ(alias, nullptr);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
}

// The toolkit still uses a button after its callback has returned.
TEST_F(Hazards, AButtonOutlivesItsCallback) {
    WidgetList buttons = nullptr;
    XtVaGetValues(pulldown_of(size_menu), XmNchildren, &buttons, nullptr);
    Widget button = buttons[0];
    bool gone = false;
    XtAddCallback(
        button, XmNdestroyCallback,
        [](Widget, XtPointer flag, XtPointer) { *static_cast<bool*>(flag) = true; }, &gone);
    bool gone_in_callback = false;
    {
        const Meanwhile outer([&] {
            const Meanwhile inner([] { select(wi_hrn_list, {bitmap_position()}); });
            XtCallCallbacks(button, XmNactivateCallback, nullptr);
            gone_in_callback = gone;
        });
        pump();
    }
    EXPECT_FALSE(gone_in_callback);
    EXPECT_TRUE(pump_until([&] { return gone; })) << "and goes then";
    EXPECT_NE(chosen(size_menu), "10");
}

TEST_F(Hazards, ATimerThatIsDueDoesNotHoldUpTheEvents) {
    bool rung = false;
    const XtIntervalId timer = XtAppAddTimeOut(
        app, 0, [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }, &rung);
    ::alarm(60);  // without this a failing test would wait for ever for an event
    while ((XtAppPending(app) & XtIMTimer) == 0 && !rung) XFlush(display);
    process_xt_events();
    ::alarm(0);
    if (!rung) XtRemoveTimeOut(timer);
}

// --- sizes -------------------------------------------------------------------

/// Gives the main window's list other names.
class OtherNames {
  public:
    OtherNames() { record.hrn_list = &names; }
    sample_text_cb_struct& show() {
        update_wi_hrn_list(wi_hrn_list, names);
        record.sample_field = wi_installed_sample_textfield;
        record.size_menu = find(wi_toplevel, "_size_option_menu");
        record.res_menu = find(wi_toplevel, "_res_option_menu");
        record.size_pulldown = pulldown_of(record.size_menu);
        record.res_pulldown = pulldown_of(record.res_menu);
        record.list = wi_hrn_list;
        return record;
    }
    void select(int position) {
        XmListDeselectAllItems(wi_hrn_list);
        XmListSelectPos(wi_hrn_list, position, False);
        hrn_list_sample_cb(wi_hrn_list, &record, nullptr);
        pump();
    }
    ~OtherNames() {
        update_wi_installed_hrn_list();
        // The menu buttons that point to this record must be gone before it is.
        gw::test::select(wi_hrn_list, {outline_position()});
    }
    OtherNames(const OtherNames&) = delete;
    OtherNames& operator=(const OtherNames&) = delete;
    GWHRNList names{0};
    sample_text_cb_struct record;
};

TEST_F(Hazards, ASizeOfTenthsOfAPointKeepsItsResolutions) {
    const std::string file = some_font_file();
    ASSERT_FALSE(file.empty());
    const ServedDirectory served;
    served.dir.write("odd.pcf", TempDir::read_bytes(file));
    served.dir.write("fonts.dir", "1\nodd.pcf " + bitmap_xlfd("gwodd", "246", "75") + '\n');
    served.serve();
    OtherNames other;
    other.names.add_font(make_bitmap("gwodd", "246"));
    other.show();
    other.select(1);
    EXPECT_EQ(choices(pulldown_of(size_menu)), Texts{"24"});
    EXPECT_EQ(choices(pulldown_of(res_menu)), Texts{"75 X 75"});
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
}

TEST_F(Hazards, ASizeWithoutFontsLeavesTheFieldEmpty) {
    OtherNames other;
    const gw::Ref<GWFont> large(make_bitmap("gwsizes", "140"));
    other.names.add_font(make_bitmap("gwsizes", "100"));
    other.names.add_font(large.get());
    ASSERT_EQ(other.names.get_elem_at_pos(1)->del_font(large.get()), 1);
    other.show();
    other.select(1);
    EXPECT_EQ(choices(pulldown_of(size_menu)), (Texts{"10", "14"}));
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
    EXPECT_FALSE(XtIsSensitive(res_menu));
    EXPECT_NE(chosen(res_menu), "") << "the menu never points at a button that is gone";
}

TEST_F(Hazards, ABitmapFontWithoutXlfdNameIsShown) {
    OtherNames other;
    other.names.add_font(make_font(GWFont::BITMAP_FONT, "fixed"));
    other.show();
    other.select(1);
    EXPECT_EQ(choices(pulldown_of(size_menu)), Texts{"0"});
    EXPECT_EQ(choices(pulldown_of(res_menu)), Texts{"0"});
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), DEFAULT_TEXT);
}

TEST_F(Hazards, APositionWithoutAnEntryShowsNothing) {
    OtherNames other;
    other.show();
    XmListAddItemUnselected(wi_hrn_list, gw::xm_text("nothing behind it").get(), 1);
    for (int i = 0; i < the_alias_count; ++i)
        XmListAddItemUnselected(wi_hrn_list, gw::xm_text("alias").get(), 1);
    other.select(the_alias_count + 1);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
}

// --- locales -----------------------------------------------------------------

class TextInLocale : public testing::TestWithParam<const char*> {};

TEST_P(TextInLocale, OfAnyBytesIsShownWithoutHarm) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", GetParam(), 1);
            start_at_home();
            for (const std::string& text :
                 {std::string("\xe9"), std::string("caf\xc3\xa9"), std::string("\xff\xfe\x80"),
                  std::string("A\xc3"), std::string("\xe6\x97\xa5\xe6\x9c\xac"),
                  std::string("\t\x01\x1b\x7f"), std::string(5000, '\xc3'),
                  std::string(999, 'a') + "\xe6\x97\xa5"}) {
                sample_text = text;
                select(wi_hrn_list, {outline_position()});
                select(wi_hrn_list, {bitmap_position()});
                select(wi_hrn_list, {symbol_position()});
                if (sample_text != text) std::_Exit(2);
                type_into(wi_installed_sample_textfield, text);
                if (sample_text.size() > SAMPLE_TEXT_LIMIT) std::_Exit(3);
            }
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_P(TextInLocale, OfKanjiIsShownInAKanjiFontOfAUnicodeLocale) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", GetParam(), 1);
            start_at_home();
            const int position = position_where(
                [](const GWHRNElement& elem) { return has_charset(elem, "jisx0208.1983", "0"); });
            if (position == 0) std::_Exit(4);
            select(wi_hrn_list, {position});
            if (!shown_text(wi_installed_sample_textfield).empty()) std::_Exit(5);
            sample_text = "\xe6\x97\xa5\xe6\x9c\xac";
            select(wi_hrn_list, {});
            select(wi_hrn_list, {position});
            const bool drawn = shown_text(wi_installed_sample_textfield) == sample_text &&
                               ink(wi_installed_sample_textfield) > 20;
            const bool expected = std::string(GetParam()).ends_with("UTF-8");
            std::_Exit(drawn == expected ? 0 : 6);
        },
        testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Locales, TextInLocale,
                         testing::Values("C", "C.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8", "ja_JP.eucjp",
                                         "en_US"));

}  // namespace
