// SPDX-License-Identifier: MIT
//
// mkfontdir makes an index anew and knows nothing of us: without "fonts.scale" it drops every outline.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* OUTLINE = "-x-alpha-medium-r-normal--0-0-0-0-p-0-iso8859-1";
constexpr const char* BITMAP = "-x-tiny-medium-r-normal--10-100-75-75-c-80-iso8859-1";

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
}

/// A real bitmap font, which mkfontdir can read.
void make_bitmap(const TempDir& dir, const std::string& target) {
    dir.write("tiny.bdf",
              std::string("STARTFONT 2.1\nFONT ") + BITMAP +
                  "\nSIZE 10 75 75\nFONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 8\n"
                  "FONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\n"
                  "SWIDTH 800 0\nDWIDTH 8 0\nBBX 8 8 0 0\nBITMAP\n18\n3C\n66\n66\n7E\n66\n66\n66\n"
                  "ENDCHAR\nENDFONT\n");
    run("bdftopcf -o '" + dir.file(target) + "' '" + dir.file("tiny.bdf") + "'");
}

TEST(LostLines, AreWhatMkfontdirDropsAndTheNextChangePutsBack) {
    const TempDir dir;
    dir.write("from/a.pfa", "%!PS-AdobeFont-1.0: Alpha\noutline\n");
    dir.write("from/b.pfa", "%!PS-AdobeFont-1.0: Beta\noutline\n");
    make_bitmap(dir, "from/tiny.pcf");
    dir.make_dir("fonts");
    GW_T1_FSM type1;
    GW_PCF_FSM pcf;
    GW_FSM_LIST modules;
    modules.append(&type1);
    modules.append(&pcf);
    const auto font = [&](GWFont::GW_FONT_TYPE type, const char* where, const char* file, const char* name) {
        gw::Ref<GWFont> made(new GWFont(type));
        made->set_xlfd_name(name);
        auto files = std::make_unique<GW_FSPEC_LIST>();
        files->append(
            new GW_FILE_SPEC(file, dir.file(where).c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_UNKNOWN));
        made->set_font_file_list(std::move(files));
        return made;
    };
    const std::string fonts = dir.file("fonts");
    ASSERT_TRUE(font(GWFont::TYPE1_FONT, "from", "a.pfa", OUTLINE)->install(fonts, modules));
    ASSERT_TRUE(font(GWFont::BITMAP_FONT, "from", "tiny.pcf", BITMAP)->install(fonts, modules));
    const std::string bitmap_line = std::string("tiny.pcf ") + BITMAP + '\n';
    const std::string outline_line = std::string("a.pfa ") + OUTLINE + '\n';

    run("mkfontdir '" + fonts + "'");
    EXPECT_EQ(dir.read("fonts/fonts.dir"), "1\n" + bitmap_line);

    ASSERT_TRUE(font(GWFont::TYPE1_FONT, "from", "b.pfa", "-x-beta")->install(fonts, modules));
    EXPECT_EQ(dir.read("fonts/fonts.dir"), "3\n" + bitmap_line + outline_line + "b.pfa -x-beta\n");

    run("mkfontdir '" + fonts + "'");
    ASSERT_TRUE(font(GWFont::TYPE1_FONT, "fonts", "a.pfa", OUTLINE)->remove(modules));
    EXPECT_EQ(dir.read("fonts/fonts.dir"), "2\n" + bitmap_line + "b.pfa -x-beta\n");
    EXPECT_FALSE(dir.exists("fonts/a.pfa"));
}

}  // namespace
