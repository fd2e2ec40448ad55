// SPDX-License-Identifier: MIT
//
// The media dialog, with a private media service, the sandbox's replacement for eject, and the sandbox's own
// /cdrom.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/common/warningdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/widgets.h"
#include "platform/host_paths.h"
#include "support/media_service.h"
#include "widget/dialogs_test_support.h"

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* EJECT_LOG = "/tmp/eject.log";
constexpr const char* EJECT_STATUS = "/tmp/eject.status";

class Media : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        start_at_home();
        first_choice = get_current_rmedia_choice();
        popup_rmedia_dlg(nullptr);
        first_entry = gw::test::chosen(menu());
        popdown_rmedia_dlg();
    }
    void SetUp() override {
        told.clear();
        ::unlink(EJECT_LOG);
        ::unlink(EJECT_STATUS);
        popup_rmedia_dlg(note);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_rmedia_dlg); }));
    }
    void TearDown() override {
        popdown_rmedia_dlg();
        XtUnmanageChild(wi_warning_dlg);
        choose(menu(), "Floppy");
        ::rmdir(gw::CDROM_MEDIUM_DIR);
        ::unlink(EJECT_LOG);
        ::unlink(EJECT_STATUS);
        pump();
    }
    static void note(int choice) { told.push_back(choice); }
    static void note_elsewhere(int choice) { told.push_back(choice + 10); }

    static Widget menu() { return find(wi_rmedia_dlg, "media_option_menu"); }
    static bool click(const char* button) { return press(find(wi_rmedia_dlg, button)); }
    static bool is_open() { return XtIsManaged(wi_rmedia_dlg) != False; }
    /// The warning on the screen; empty when there is none.
    static std::string warning() {
        if (!XtIsManaged(wi_warning_dlg)) return "";
        EXPECT_TRUE(pump_until([] { return is_viewable(wi_warning_dlg); }));
        EXPECT_EQ(title_of(wi_warning_dlg), "Glyph Warden - Other Media");
        return message_of(wi_warning_dlg);
    }
    static std::string ejected() { return TempDir::read_bytes(EJECT_LOG); }

    inline static std::vector<int> told;
    inline static std::string first_choice;
    inline static std::string first_entry;
};

/// With the service, and an empty drive.
class ServedMedia : public Media {
  protected:
    ServedMedia() { service_.add_drive("sr0"); }
    void insert() { service_.insert_medium("sr0"); }
    void remove() { service_.remove_medium("sr0"); }

  private:
    PrivateBus bus_;
    SystemBusAddress address_{bus_.address()};
    MediaService service_{bus_.address()};
};

TEST_F(Media, HasItsTextsAndButtons) {
    EXPECT_EQ(title_of(wi_rmedia_dlg), "Glyph Warden - Other Media");
    EXPECT_EQ(gw::label_of(menu()), "Check Fonts From:");
    EXPECT_THAT(choices(find(wi_rmedia_dlg, "pulldown_menu")), ElementsAre("Floppy", "CD-ROM"));
    const struct {
        const char* name;
        const char* text;
    } labels[] = {{"floppy_button", "Floppy"}, {"cdrom_button", "CD-ROM"}, {"check_button", "Check"},
                  {"eject_button", "Eject"},   {"close_button", "Close"},  {"help_dlg_button", "Help..."},
                  {"msg_label", " "}};
    for (const auto& label : labels) {
        Widget w = find(wi_rmedia_dlg, label.name);
        ASSERT_NE(w, nullptr) << label.name;
        EXPECT_EQ(gw::label_of(w), label.text) << label.name;
    }
    EXPECT_NE(find(wi_rmedia_dlg, "separator"), nullptr);
}

TEST_F(Media, AFloppyIsTheFirstChoice) {
    EXPECT_EQ(first_choice, "floppy");
    EXPECT_EQ(first_entry, "Floppy");
}

TEST_F(Media, TheChoiceIsTheMenusAndOutlastsTheDialog) {
    ASSERT_TRUE(choose(menu(), "CD-ROM"));
    EXPECT_STREQ(get_current_rmedia_choice(), "cd_rom");
    ASSERT_TRUE(click("close_button"));
    popup_rmedia_dlg(note);
    EXPECT_STREQ(get_current_rmedia_choice(), "cd_rom");
    EXPECT_EQ(gw::test::chosen(menu()), "CD-ROM");
    ASSERT_TRUE(choose(menu(), "Floppy"));
    EXPECT_STREQ(get_current_rmedia_choice(), "floppy");
    EXPECT_THAT(told, IsEmpty()) << "choosing is not checking";
}

TEST_F(Media, HelpDoesNothing) {
    EXPECT_EQ(XtHasCallbacks(find(wi_rmedia_dlg, "help_dlg_button"), XmNactivateCallback), XtCallbackHasNone);
    click("help_dlg_button");
    EXPECT_TRUE(is_open());
    EXPECT_EQ(warning(), "");
    EXPECT_THAT(told, IsEmpty());
}

// --- Check -------------------------------------------------------------------

TEST_F(Media, WithoutTheServiceNeitherCanBeChecked) {
    const TempDir dir;
    const SystemBusAddress nowhere("unix:path=" + dir.file("missing"));
    ASSERT_TRUE(click("check_button"));
    EXPECT_EQ(warning(), "Floppy Error: Cannot check for floppy \nvold not running\n");
    ASSERT_TRUE(choose(menu(), "CD-ROM"));
    ASSERT_EQ(::mkdir(gw::CDROM_MEDIUM_DIR, 0755), 0);
    ASSERT_TRUE(click("check_button"));
    EXPECT_EQ(warning(), "Cdrom Error: Cannot check for CD\nvold not running\n") << "though there is one";
    EXPECT_TRUE(is_open());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ServedMedia, AMissingFloppyIsAWarning) {
    ASSERT_TRUE(click("check_button"));
    EXPECT_EQ(warning(),
              "Floppy Error: No media in floppy drive or \nvold access to floppy drive is disabled. \n"
              "Please insert floppy and try again\n");
    EXPECT_TRUE(is_open());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ServedMedia, AFloppyThatIsThereIsToldAndTheDialogStays) {
    insert();
    ASSERT_TRUE(click("check_button"));
    EXPECT_THAT(told, ElementsAre(2));
    EXPECT_TRUE(is_open());
    EXPECT_EQ(warning(), "");
    ASSERT_TRUE(click("check_button"));
    EXPECT_THAT(told, ElementsAre(2, 2)) << "each time";
    remove();
    ASSERT_TRUE(click("check_button"));
    EXPECT_THAT(told, ElementsAre(2, 2));
    EXPECT_NE(warning(), "");
}

TEST_F(ServedMedia, AMissingCdIsALongWarning) {
    ASSERT_TRUE(choose(menu(), "CD-ROM"));
    insert();  // the service's answer is not used: the directory decides
    ASSERT_TRUE(click("check_button"));
    EXPECT_EQ(warning(),
              "Cdrom Error: Either there is no media in the cdrom drive\nor a newly inserted CD is still "
              "being read by the driver.\n\nYou must insert the CD, wait for the green light\n on the cdrom "
              "drive to stop blinking and then \nselect 'Check' again\n");
    EXPECT_TRUE(is_open());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ServedMedia, ACdThatIsThereIsToldAndTheDialogStays) {
    ASSERT_TRUE(choose(menu(), "CD-ROM"));
    ASSERT_EQ(::mkdir(gw::CDROM_MEDIUM_DIR, 0755), 0);
    ASSERT_TRUE(click("check_button"));
    EXPECT_THAT(told, ElementsAre(1));
    EXPECT_TRUE(is_open());
    EXPECT_EQ(warning(), "");
}

TEST_F(ServedMedia, NobodyNeedWaitForAnAnswer) {
    insert();
    ASSERT_EQ(::mkdir(gw::CDROM_MEDIUM_DIR, 0755), 0);
    popup_rmedia_dlg(nullptr);
    for (const char* medium : {"Floppy", "CD-ROM"}) {
        ASSERT_TRUE(choose(menu(), medium));
        ASSERT_TRUE(click("check_button"));
        EXPECT_TRUE(is_open());
        EXPECT_EQ(warning(), "");
    }
    ASSERT_TRUE(click("eject_button"));
    EXPECT_FALSE(is_open());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ServedMedia, TheSecondCallerTakesThePlaceOfTheFirst) {
    insert();
    popup_rmedia_dlg(note_elsewhere);
    ASSERT_TRUE(click("check_button"));
    EXPECT_THAT(told, ElementsAre(12));
}

TEST_F(ServedMedia, ReturnIsCheck) {
    insert();
    press_key(wi_rmedia_dlg, "Return");
    EXPECT_THAT(told, ElementsAre(2));
    EXPECT_TRUE(is_open());
}

// --- Eject and Close ---------------------------------------------------------

TEST_F(Media, EjectEjectsTheChosenMediumTellsAndCloses) {
    ASSERT_TRUE(click("eject_button"));
    EXPECT_EQ(ejected(), "-f floppy\n");
    EXPECT_THAT(told, ElementsAre(0));
    EXPECT_FALSE(is_open());
    popup_rmedia_dlg(note);
    ASSERT_TRUE(choose(menu(), "CD-ROM"));
    ASSERT_TRUE(click("eject_button"));
    EXPECT_EQ(ejected(), "-f floppy\n-f cdrom\n");
    EXPECT_THAT(told, ElementsAre(0, 0));
    EXPECT_FALSE(is_open());
    EXPECT_EQ(warning(), "");
}

TEST_F(Media, AFailedEjectionIsTreatedAlike) {
    std::ofstream(EJECT_STATUS) << "1\n";
    ASSERT_TRUE(click("eject_button"));
    EXPECT_EQ(ejected(), "-f floppy\n");
    EXPECT_THAT(told, ElementsAre(0));
    EXPECT_FALSE(is_open());
    EXPECT_EQ(warning(), "");
}

TEST_F(ServedMedia, WhoHasClosedItIsNotToldAnyMore) {
    insert();
    void (*const ways[])() = {[] { click("close_button"); }, [] { press_key(wi_rmedia_dlg, "Escape"); },
                              [] { close_box(wi_rmedia_dlg); }, [] { popdown_rmedia_dlg(); }};
    for (auto* const way : ways) {
        popup_rmedia_dlg(note);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_rmedia_dlg); }));
        way();
        EXPECT_FALSE(is_open());
        EXPECT_FALSE(is_viewable(wi_rmedia_dlg));
        click("check_button");
        EXPECT_THAT(told, IsEmpty());
    }
    EXPECT_EQ(ejected(), "");
}

}  // namespace
