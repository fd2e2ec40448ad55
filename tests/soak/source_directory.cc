// SPDX-License-Identifier: MIT
#include "soak/source_directory.h"

#include <string>

#include "platform/host_paths.h"

namespace gw::soak {

namespace {

constexpr const char* FAMILIES[] = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta"};
constexpr const char* OUTLINES[] = {"One", "Two", "Three"};

Font bitmap_font(const std::string& family, int source, Random& random) {
    static const std::string base = bytes_of(std::string(SYSTEM_FONT_DIR) + "/misc/6x13.pcf");
    std::string shown = OURS + family + " Medium [Bitmap]";
    const std::string size = random.one_in(2) ? "120" : "140";
    const std::string xlfd =
        "-test-" + (OURS + family) + "-medium-r-normal--12-" + size + "-75-75-c-60-iso8859-1";
    return {family + ".pcf", xlfd, shown, base + "source " + std::to_string(source)};
}

Font outline_font(const std::string& name, int source) {
    const std::string family = std::string(OURS) + name;
    const std::string bytes =
        "%!PS-AdobeFont-1.0: Soak" + name + " 001.000\n%%Title: of source " + std::to_string(source) +
        "\n/FontInfo 6 dict dup begin\n/Notice (Adobe) readonly def\n/FamilyName (" + family +
        ") readonly def\n/Weight (Medium) readonly def\n/ItalicAngle 0 def\n"
        "/isFixedPitch false def\nend readonly def\n/FontName /Soak" +
        name + " def\n/Encoding StandardEncoding def\ncurrentdict end\ncurrentfile eexec\n";
    const std::string xlfd = "-adobe-" + family + "-Medium-r-normal--0-0-0-0-p-0-iso8859-1";
    return {"soak" + name + ".pfa", xlfd, family + " Medium [Type-1]", bytes};
}

}  // namespace

void SourceDirectory::fill(int number, Random& random) {
    std::string lines;
    int count = 0;
    bool has_shared = false;
    for (const char* family : FAMILIES) {
        if (random.one_in(2)) continue;
        Font font = bitmap_font(family, number, random);
        if (!has_shared && random.one_in(4)) {
            font.file = "shared.pcf";
            has_shared = true;
        }
        lines += font.file + ' ' + font.xlfd + '\n';
        ++count;
        fonts[font.shown] = font;
    }
    dir.write("fonts.dir", std::to_string(count) + '\n' + lines);
    for (const char* name : OUTLINES) {
        const Font font = outline_font(name, number);
        if (random.one_in(2)) fonts[font.shown] = font;
    }
    for (const auto& [shown, font] : fonts) dir.write(font.file, font.bytes);
}

}  // namespace gw::soak
