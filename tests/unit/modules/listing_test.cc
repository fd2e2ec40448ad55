// SPDX-License-Identifier: MIT
//
// Listings of directories in which much is unusual, against lists that were written when every question was
// asked of the disk anew.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fontpath/gw_fpe.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

std::string outline(const std::string& family) {
    return "%!PS-AdobeFont-1.0: " + family + "\n/FamilyName (" + family +
           ") def\n/Weight (Book) def\n/Notice (Copyright URW) def\n/Encoding StandardEncoding def\n"
           "currentfile eexec\n";
}

std::string line(const std::string& file, const std::string& family) {
    return file + " -x-" + family + "-medium-r-normal--12-120-75-75-m-70-iso8859-1\n";
}

/// A font in one line: its names, whether it is read-only, its files with their types.
std::string shown(GWFont& font) {
    std::string text = font.get_cli_hrn_name() + (font.is_read_only() ? " read-only" : "");
    for (const GW_FILE_SPEC* file : *font.get_font_file_list())
        text += std::string(" ") + file->get_name() + '/' + std::to_string(file->get_ext_type());
    return text;
}

unsigned kilobytes_on_disk(const GWFont& font) {
    unsigned kilobytes = 0;
    for (const GW_FILE_SPEC* file : *font.get_font_file_list()) {
        struct stat info = {};
        if (::stat(file->get_path(), &info) == 0) kilobytes += static_cast<unsigned>(info.st_blocks) / 2;
    }
    return kilobytes;
}

class Listing : public testing::Test {
  protected:
    Listing() {
        gw::append_font_modules(modules_);
        for (const char* name : {"one", "two", "three", "four", "five", "six", "seven", "eight"})
            dir_.write(std::string(name) + ".pfb", outline(name));
        for (const char* name : {"two.pfa", "deep/seven.pfa"}) dir_.write(name, outline("other"));
        for (const char* name : {"one.afm", "afm/two", "afm/three.afm", "afm/four", "afm/four.afm", "z.pcf",
                                 "free.pcf", "kept.pcf"})
            dir_.write(name, "metrics");
        dir_.write("big.pcf", std::string(9000, 'b'));
        link("one.pfb", "link.pfb");
        link("nowhere", "dangling.pfb");
        link("nowhere", "five.afm");
        link("z.pcf", "link.pcf");
        dir_.make_dir("six.afm");
        dir_.make_dir("directory.pfb");
        mode("eight.pfb", S_IRUSR);
        mode("kept.pcf", S_IRUSR | S_IRGRP | S_IROTH);
        mode("free.pcf", S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH);
    }
    ~Listing() override {
        for (GWFont* font : fonts_) const gw::Ref<GWFont> last(font);
    }
    void link(const char* target, const char* name) {
        EXPECT_EQ(::symlink(target, dir_.file(name).c_str()), 0);
    }
    void mode(const char* name, mode_t bits) { EXPECT_EQ(::chmod(dir_.file(name).c_str(), bits), 0); }
    /// The fonts in the order of their lines: that of a source is the disk's.
    std::vector<std::string> list() {
        std::vector<std::string> lines;
        for (GWFont* font : fonts_) {
            lines.push_back(shown(*font));
            EXPECT_EQ(font->get_disk_space(), kilobytes_on_disk(*font)) << lines.back();
        }
        return lines;
    }

    TempDir dir_;
    GW_FSM_LIST modules_;
    GW_LIST<GWFont> fonts_;
};

TEST_F(Listing, OfAnIndexIsAsItEverWas) {
    std::string index = "17\n";
    for (const char* file :
         {"one.pfb",     "two.pfb",        "two.pfa",   "three.pfb", "one.pfb",      "four.pfb",
          "five.pfb",    "six.pfb",        "eight.pfb", "link.pfb",  "dangling.pfb", "directory.pfb",
          "missing.pfa", "deep/seven.pfa", "z.pcf",     "kept.pcf",  "free.pcf",     "big.pcf",
          "link.pcf",    "missing.pcf",    "/z.pcf",    ":2:z.pcf"})
        index += line(file, file);
    index +=
        "  lead.pcf  two blanks\nalone.pcf\n" + std::string("cut.pcf na\0me\n", 14) + "end.pcf no-newline";
    dir_.write("fonts.dir", index);
    GW_FPE element(dir_.c_str());
    modules_.make_installed_font_list(fonts_, &element);
    EXPECT_EQ(list(), (std::vector<std::string>{
                          "[X One.pfb Medium ISO-Latin-1 Type-1] one.pfb/1 one.afm/2",
                          "[X Two.pfb Medium ISO-Latin-1 Type-1] two.pfb/1 two.pfa/0 afm/two/7",
                          "[X Three.pfb Medium ISO-Latin-1 Type-1] three.pfb/1 afm/three.afm/7",
                          "[X One.pfb Medium ISO-Latin-1 Type-1] one.pfb/1 one.afm/2",
                          "[X Four.pfb Medium ISO-Latin-1 Type-1] four.pfb/1 afm/four/7",
                          "[X Five.pfb Medium ISO-Latin-1 Type-1] five.pfb/1",
                          "[X Six.pfb Medium ISO-Latin-1 Type-1] read-only six.pfb/1 six.afm/2",
                          "[X Eight.pfb Medium ISO-Latin-1 Type-1] read-only eight.pfb/1",
                          "[X Link.pfb Medium ISO-Latin-1 Type-1] link.pfb/1",
                          "[X Dangling.pfb Medium ISO-Latin-1 Type-1]",
                          "[X Directory.pfb Medium ISO-Latin-1 Type-1] read-only directory.pfb/1",
                          "[X Two.pfa Medium ISO-Latin-1 Type-1] two.pfb/1 two.pfa/0 afm/two/7",
                          "[X Missing.pfa Medium ISO-Latin-1 Type-1]",
                          "[X Deep/seven.pfa Medium ISO-Latin-1 Type-1] deep/seven.pfa/0",
                          "[X Z.pcf Medium ISO-Latin-1 Bitmap] z.pcf/7",
                          "[X Kept.pcf Medium ISO-Latin-1 Bitmap] read-only kept.pcf/7",
                          "[X Free.pcf Medium ISO-Latin-1 Bitmap] free.pcf/7",
                          "[X Big.pcf Medium ISO-Latin-1 Bitmap] big.pcf/7",
                          "[X Link.pcf Medium ISO-Latin-1 Bitmap] link.pcf/7",
                          "[X Missing.pcf Medium ISO-Latin-1 Bitmap] read-only missing.pcf/7",
                          "[X /z.pcf Medium ISO-Latin-1 Bitmap] /z.pcf/7",
                          "[X :2:z.pcf Medium ISO-Latin-1 Bitmap] read-only :2:z.pcf/7",
                          "[ two blanks  Bitmap] read-only lead.pcf/7",
                          "[    - Bitmap] read-only alone.pcf/7",
                          "[na  Bitmap] read-only cut.pcf/7",
                          "[no-newline  Bitmap] read-only end.pcf/7"}));
}

TEST_F(Listing, OfASourceIsAsItEverWas) {
    GW_DIR source(dir_.c_str());
    dir_.write("fonts.dir", "0\n");
    modules_.make_font_list(fonts_, &source, 0);
    std::vector<std::string> lines = list();
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines,
              (std::vector<std::string>{"[Urw Eight Book  ISO-Latin-1 Type-1] read-only eight.pfb/1",
                                        "[Urw Five Book  ISO-Latin-1 Type-1] five.pfb/1",
                                        "[Urw Four Book  ISO-Latin-1 Type-1] four.pfb/1 afm/four/7",
                                        "[Urw One Book  ISO-Latin-1 Type-1] link.pfb/1",
                                        "[Urw One Book  ISO-Latin-1 Type-1] one.pfb/1 one.afm/2",
                                        "[Urw Other Book  ISO-Latin-1 Type-1] two.pfb/1 two.pfa/0 afm/two/7",
                                        "[Urw Seven Book  ISO-Latin-1 Type-1] seven.pfb/1",
                                        "[Urw Six Book  ISO-Latin-1 Type-1] read-only six.pfb/1 six.afm/2",
                                        "[Urw Three Book  ISO-Latin-1 Type-1] three.pfb/1 afm/three.afm/7"}));
}

}  // namespace
