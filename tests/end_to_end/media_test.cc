// SPDX-License-Identifier: MIT
//
// Fonts from a medium in a drive, with a private removable-media service.
#include "end_to_end/program_test.h"

#include <filesystem>
#include <functional>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/waiting.h"
#include "support/media_service.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::MediaService;
using gw::test::PrivateBus;
using gw::test::SystemBusAddress;
using gw::test::TempDir;

constexpr const char* MEDIA = "Glyph Warden - Other Media";  // also the title of the warning
constexpr const char* CDROM = "/cdrom/cdrom0";
constexpr const char* FLOPPY = "/floppy/floppy0";
constexpr const char* CDROM_STAGING = "gw_cdrom";
constexpr const char* FLOPPY_STAGING = "gw_floppy";
constexpr const char* EJECT_LOG = "/tmp/eject.log";
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};

class Media : public ProgramTest {
  protected:
    ~Media() override {
        program.reset();
        for (const char* leftover : {CDROM, FLOPPY, EJECT_LOG}) std::filesystem::remove_all(leftover);
    }
    void open_media() {
        start();
        ASSERT_NE(opens(InstallDialog::TITLE, [&] { main->choose("f", "i"); }), 0U);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
        open_media_again();
    }
    void open_media_again() {
        ASSERT_NE(opens(MEDIA, [&] { desktop.click_middle(dialog->media_button); }), 0U);
        media = media_window();
        ASSERT_NE(media, 0U);
    }
    [[nodiscard]] Window media_window() const {
        for (const Window window : desktop.windows_titled(MEDIA)) {
            if (desktop.part_named(window, "check_button") != 0) return window;
        }
        return 0;
    }
    [[nodiscard]] bool warns() const { return desktop.windows_titled(MEDIA).size() == 2; }
    void click(const char* button) const { desktop.click_middle(desktop.part_named(media, button)); }
    /// Does `action`, which should choose the entry below the floppy's, and waits until the menu shows
    /// another choice.
    void choose_cdrom_by(const std::function<void(Window menu, int x)>& action) {
        const Window menu = desktop.part_named(media, "media_option_menu");
        ASSERT_NE(menu, 0U);
        const Rectangle place = desktop.place_of(menu);
        const int x = place.width - 55;
        const int y = place.height / 2;
        // The text of the choice, without the frame that shows the keyboard focus.
        const Rectangle name = {place.x + x - 10, place.y + y - 6, 30, 12};
        const auto floppy = desktop.settled_pixels(name);
        ASSERT_TRUE(follows([&] { return !desktop.has_menu() && desktop.pixels(name) != floppy; },
                            [&] { action(menu, x); }));
    }
    /// The menu opens with its current entry under the pointer.
    void choose_cdrom() {
        choose_cdrom_by([this](Window menu, int x) { desktop.click_down_in(menu, x, 1); });
    }
    void choose_cdrom_by_keys() {
        choose_cdrom_by([this](Window, int) {
            desktop.key("space");
            desktop.await_menu();
            desktop.key("Down");
            desktop.key("Return");
        });
    }
    /// Presses Check, waits for the warning, closes it, and returns to the media dialog.
    void expect_warning(const char* picture) {
        ASSERT_TRUE(follows([&] { return warns(); }, [&] { click("check_button"); }));
        desktop.picture(picture);
        ASSERT_TRUE(follows([&] { return !warns(); }, [&] { desktop.key("Return"); }));
        EXPECT_NE(media_window(), 0U);
        EXPECT_FALSE(previews(CDROM_STAGING) || previews(FLOPPY_STAGING));
    }
    bool sample_of_line(int line) {
        const auto before = desktop.settled_pixels(dialog->sample());
        return follows(
            [&] { return dialog->sample_is_drawn() && desktop.pixels(dialog->sample()) != before; },
            [&] { dialog->click_line(line); });
    }
    PrivateBus bus;
    SystemBusAddress address{bus.address()};
    std::unique_ptr<InstallDialog> dialog;
    Window media = 0;
};

class ServedMedia : public Media {
  protected:
    ServedMedia() {
        service.add_drive("sr0");
        service.add_drive("fd0");
    }
    MediaService service{bus.address()};
};

// The fonts are in directories of the disc.
TEST_F(ServedMedia, ADiscsFontsAreShownAndInstalled) {
    service.insert_medium("sr0");
    AARDVARKS.write_to(CDROM + std::string("/fonts/display"));
    BitmapFont{"Abyssinia", 14}.write_to(CDROM + std::string("/more"));
    open_media();
    choose_cdrom();
    desktop.picture("media");
    click("check_button");
    ASSERT_TRUE(wait_until([&] { return previews(CDROM_STAGING); }));
    ASSERT_TRUE(press(MEDIA, "close_button"));
    EXPECT_TRUE(sample_of_line(0));
    desktop.picture("media-preview");
    EXPECT_TRUE(sample_of_line(1));
    dialog->click_line(0, "Shift_L");
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    for (const BitmapFont& font : {AARDVARKS, BitmapFont{"Abyssinia", 14}}) {
        EXPECT_TRUE(
            wait_until([&] { return std::filesystem::exists(default_destination() + font.file_name()); }));
    }
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_EQ(leave(), 0);
    EXPECT_FALSE(previews(CDROM_STAGING));
}

// The open menu gets the keys, wherever the pointer is.
TEST_F(ServedMedia, TheMediumIsChosenByKeyboard) {
    open_media();
    desktop.park_pointer();
    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(media); }));
    desktop.key("Left");  // the menu, from Check
    choose_cdrom_by_keys();
    desktop.key("Right");
    desktop.key("space");
    ASSERT_TRUE(wait_until([&] { return warns(); }));
    desktop.picture("no-disc-by-keyboard");
    desktop.key("Return");
    ASSERT_TRUE(wait_until([&] { return !warns() && desktop.has_keyboard(media); }));

    AARDVARKS.write_to(CDROM);
    desktop.key("Return");
    EXPECT_TRUE(wait_until([&] { return previews(CDROM_STAGING); })) << "Return is Check";
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears(MEDIA));
}

TEST_F(ServedMedia, AFloppyIsListedOnceItIsInserted) {
    open_media();
    expect_warning("no-floppy");
    ABYSSINIA.write_to(FLOPPY);
    service.insert_medium("fd0");
    ASSERT_TRUE(follows([&] { return previews(FLOPPY_STAGING); }, [&] { click("check_button"); }));
    ASSERT_TRUE(press(MEDIA, "close_button"));
    EXPECT_TRUE(sample_of_line(0));
}

TEST_F(ServedMedia, ADiscThatIsNotThereIsAskedFor) {
    open_media();
    choose_cdrom();
    expect_warning("no-disc");
    AARDVARKS.write_to(CDROM);
    ASSERT_TRUE(follows([&] { return previews(CDROM_STAGING); }, [&] { click("check_button"); }));
}

TEST_F(ServedMedia, EjectsWhatIsChosenAndCloses) {
    AARDVARKS.write_to(CDROM);
    open_media();
    choose_cdrom();
    ASSERT_TRUE(press(MEDIA, "eject_button"));
    EXPECT_TRUE(wait_until([&] { return TempDir::read_bytes(EJECT_LOG) == "-f cdrom\n"; }))
        << TempDir::read_bytes(EJECT_LOG);
    EXPECT_TRUE(desktop.is_visible(InstallDialog::TITLE));
    EXPECT_EQ(leave(), 0);
}

TEST_F(ServedMedia, EveryWayOutListsNothing) {
    AARDVARKS.write_to(CDROM);
    open_media();
    choose_cdrom();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        if (media_window() == 0) open_media_again();
        ASSERT_TRUE(leave_window(MEDIA, way, "close_button"));
        dialog->click_line(0);
        desktop.settle();
        EXPECT_FALSE(dialog->sample_is_drawn());
    }
    EXPECT_FALSE(previews(CDROM_STAGING));
    EXPECT_FALSE(std::filesystem::exists(EJECT_LOG));
}

TEST_F(Media, WithoutTheServiceNothingCanBeChecked) {
    AARDVARKS.write_to(CDROM);
    open_media();
    expect_warning("no-service-floppy");
    choose_cdrom();
    expect_warning("no-service-disc");
}

}  // namespace
