// SPDX-License-Identifier: MIT
#include "end_to_end/broken_setups.h"

#include <unistd.h>

#include <ctime>
#include <filesystem>

namespace gw::e2e {

namespace {

namespace fs = std::filesystem;

const PatternFont AARDVARK{.family = "aardvark"};
const PatternFont AARDVARK_UNICODE{.family = "aardvark", .charset = "iso10646-1"};
const PatternFont AARDWOLF{.family = "aardwolf", .number = 1};

constexpr const char* OUTLINE = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

std::string file_of(const PatternFont& font) {
    return font.family + std::to_string(font.pixels) + '-' + font.charset + ".bdf";
}

// The directory that is configured was moved to another place, which is on no path.
void miss_a_directory(const Ground& ground) {
    ground.configure(ground.dir("old-fonts"));
    ground.fonts(".fonts/aardvark", {AARDVARK});
}

void make_a_directory_unreadable(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDVARK});
    ground.configure(dir);
    ground.serve(dir);
    fs::permissions(dir, fs::perms::none);
}

void leave_out_the_index(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDVARK});
    ground.configure(dir);
    fs::remove(dir + "fonts.dir");
}

void let_the_index_grow_old(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDWOLF});
    ground.configure(dir);
    ground.home.write(".fonts/aardvark/" + file_of(AARDVARK), AARDVARK.bdf());
    ground.serve(dir);
}

// While the dead element is there, the server refuses every new path that has it.
void leave_a_dead_element(const Ground& ground) {
    const std::string dead = ground.fonts(".fonts/aardwolf", {AARDWOLF});
    ground.configure(dead);
    ground.serve(dead);
    fs::remove_all(dead);
    ground.fonts(".fonts/aardvark", {AARDVARK});
}

void let_an_alias_dangle(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDVARK});
    ground.configure(dir);
    ground.home.write(".fonts/aardvark/fonts.alias",
                      "our-font -own-aardvarc-medium-r-normal--12-120-75-75-c-80-iso8859-1\n");
    ground.serve(dir);
}

void have_only_75_dpi(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/75dpi", {AARDVARK});
    ground.configure(dir + ":unscaled");
    ground.serve(dir + ":unscaled");
}

void miss_a_package(const Ground&) {}

void have_another_charset(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDVARK_UNICODE});
    ground.configure(dir);
    ground.serve(dir);
}

// The first directory scales its bitmaps, so the second one, which has an outline, is not asked. There the
// font has another name too, so that its look is known.
void have_the_wrong_order(const Ground& ground) {
    const std::string outlines = ground.dir(".fonts/outlines");
    const std::string sizes = "-medium-r-normal--0-0-0-0-c-0-iso8859-1\n";
    ground.home.write(".fonts/outlines/fonts.dir",
                      "2\noutline.ttf -own-aardvark" + sizes + "outline.ttf -own-aardlook" + sizes);
    fs::copy(OUTLINE, outlines + "outline.ttf");
    const std::string bitmaps = ground.fonts(".fonts/bitmaps", {AARDVARK});
    for (const std::string& dir : {outlines, bitmaps}) {
        ground.configure(dir);
        ground.serve(dir);
    }
}

void have_a_comma(const Ground& ground) {
    ground.fonts(".fonts/aardvark,wolf", {AARDVARK});
}

void refuse_the_first_line(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDVARK});
    ground.configure(dir);
    ground.home.write(".fonts/aardvark/fonts.dir",
                      "one\n" + file_of(AARDVARK) + ' ' + AARDVARK.xlfd() + '\n');
}

/// Somebody has deleted the font a minute ago, with the program.
void delete_the_font(const Ground& ground) {
    const std::string dir = ground.fonts(".fonts/aardvark", {AARDWOLF});
    const std::string entry = std::to_string(std::time(nullptr) - 60) + "-a1b2c3";
    const std::string own = ".fonts/aardvark/.glyphward/";
    const std::string bytes = AARDVARK.bdf();
    ground.home.write(own + "trash/" + entry + "/0", bytes);
    ground.home.write(own + "trash/" + entry + "/manifest",
                      "glyphward-trash 1\nentry " + entry + "\naction a1b2c3\nuser " +
                          std::to_string(::geteuid()) + "\nfont\nfile 0 " + std::to_string(bytes.size()) +
                          ' ' + file_of(AARDVARK) + "\nline " + file_of(AARDVARK) + ' ' + AARDVARK.xlfd() +
                          "\nend\n");
    fs::permissions(dir + ".glyphward", fs::perms::owner_all);
    ground.configure(dir);
    ground.serve(dir);
}

}  // namespace

std::string Ground::fonts(const std::string& name, const std::vector<PatternFont>& fonts) const {
    std::string index = std::to_string(fonts.size()) + '\n';
    for (const PatternFont& font : fonts) {
        home.write(name + '/' + file_of(font), font.bdf());
        index += file_of(font) + ' ' + font.xlfd() + '\n';
    }
    home.write(name + "/fonts.dir", index);
    return dir(name);
}

void Ground::serve(const std::string& element) const {
    std::vector<std::string> path = desktop.font_path();
    path.insert(path.begin(), element);
    desktop.set_font_path(path);
}

const std::vector<BrokenSetUp>& broken_setups() {
    static const std::vector<BrokenSetUp> all = {
        {"directory_missing", Victim::XTERM, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true, miss_a_directory},
        {"unreadable", Victim::MOTIF_TEXT, AARDVARK.xlfd(), AARDVARK.xlfd(), true, false,
         make_a_directory_unreadable},
        {"no_index", Victim::XFD, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true, leave_out_the_index},
        {"stale_index", Victim::XMESSAGE, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true,
         let_the_index_grow_old},
        {"element_dead", Victim::XTERM, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true, leave_a_dead_element},
        {"alias_dangling", Victim::XFD, "our-font", AARDVARK.xlfd(), true, true, let_an_alias_dangle},
        {"only_75dpi", Victim::XMESSAGE, "-own-aardvark-medium-r-normal--*-120-100-100-c-*-iso8859-1",
         AARDVARK.xlfd(), true, true, have_only_75_dpi},
        {"package_missing", Victim::XTERM, "-mona-gothic-medium-r-normal--12-110-75-75-p-60-jisx0201.1976-0",
         "", true, true, miss_a_package, Mending::PACKAGE},
        {"wrong_charset", Victim::MOTIF_TEXT, AARDVARK.xlfd(), AARDVARK_UNICODE.xlfd(), true, true,
         have_another_charset},
        {"wrong_order", Victim::XMESSAGE, "-own-aardvark-medium-r-normal--24-*-*-*-c-*-iso8859-1",
         "-own-aardlook-medium-r-normal--24-*-*-*-c-*-iso8859-1", false, true, have_the_wrong_order},
        {"comma", Victim::XFD, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true, have_a_comma, Mending::INSTALL},
        {"refused_first_line", Victim::MOTIF_TEXT, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true,
         refuse_the_first_line},
        {"deleted", Victim::XTERM, AARDVARK.xlfd(), AARDVARK.xlfd(), true, true, delete_the_font},
    };
    return all;
}

}  // namespace gw::e2e
