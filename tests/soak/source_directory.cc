// SPDX-License-Identifier: MIT
#include "soak/source_directory.h"

#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/host_paths.h"

namespace gw::soak {

namespace {

constexpr const char* FAMILIES[] = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta"};
constexpr const char* OUTLINES[] = {"One", "Two", "Three"};

Font bitmap_font(const std::string& family, int source, Random& random, bool modern) {
    static const std::string base = bytes_of(std::string(SYSTEM_FONT_DIR) + "/misc/6x13.pcf");
    std::string in_list = family;
    if (modern) in_list[0] = static_cast<char>(std::toupper(in_list[0]));
    std::string shown = OURS + in_list + " Medium [Bitmap]";
    const std::string size = random.one_in(2) ? "120" : "140";
    const std::string xlfd =
        "-test-" + (OURS + family) + "-medium-r-normal--12-" + size + "-75-75-c-60-iso8859-1";
    return {family + ".pcf", xlfd, shown, base + "source " + std::to_string(source)};
}

/// The encrypted part and the end of a real font (format: Adobe Technical Note 5040, ".pfb" segments).
std::string program_of_a_font() {
    const std::string file = bytes_of(std::string(SYSTEM_FONT_DIR) + "/Type1/c0419bt_.pfb");
    std::string program;
    for (std::size_t at = 0; at + 6 <= file.size() && file[at + 1] != 3;) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i)
            length |= static_cast<std::size_t>(static_cast<unsigned char>(file[at + 2 + i])) << (8 * i);
        if (at > 0) program += file.substr(at + 6, length);
        at += 6 + length;
    }
    return program;
}

/// What mkfontscale calls the font.
std::vector<std::string> names_by_tool(const Font& font) {
    const gw::test::TempDir alone;
    alone.write(font.file, font.bytes);
    std::vector<std::string> names;
    if (std::system(("mkfontscale '" + alone.path() + "'").c_str()) != 0) return names;
    for (const std::string& line : lines_of(alone.read("fonts.scale"))) {
        if (line.starts_with(font.file + ' ')) names.push_back(line.substr(font.file.size() + 1));
    }
    return names;
}

Font outline_font(const std::string& name, int source, bool modern) {
    const std::string family = std::string(OURS) + name;
    const std::string whole =
        "/PaintType 0 def\n/FontType 1 def\n/FontMatrix [0.001 0 0 0.001 0 0] readonly def\n"
        "/FontBBox {-100 -250 1200 950} readonly def\n";
    std::string bytes =
        "%!PS-AdobeFont-1.0: Soak" + name + " 001.000\n%%Title: of source " + std::to_string(source) +
        "\n11 dict begin\n/FontInfo 6 dict dup begin\n/Notice (Adobe) readonly def\n/FamilyName (" + family +
        ") readonly def\n/Weight (Medium) readonly def\n/ItalicAngle 0 def\n"
        "/isFixedPitch false def\nend readonly def\n/FontName /Soak" +
        name + " def\n" + (modern ? whole : "") +
        "/Encoding StandardEncoding def\ncurrentdict end\ncurrentfile eexec\n";
    if (modern) bytes += program_of_a_font();
    const std::string xlfd = "-adobe-" + family + "-Medium-r-normal--0-0-0-0-p-0-iso8859-1";
    Font font{"soak" + name + ".pfa", xlfd, family + " Medium [Type-1]", bytes};
    if (modern) font.names = names_by_tool(font);
    return font;
}

}  // namespace

void SourceDirectory::fill(int number, Random& random, bool modern) {
    std::string lines;
    int count = 0;
    bool has_shared = false;
    for (const char* family : FAMILIES) {
        if (random.one_in(2)) continue;
        Font font = bitmap_font(family, number, random, modern);
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
        const Font font = outline_font(name, number, modern);
        if (random.one_in(2)) fonts[font.shown] = font;
    }
    for (const auto& [shown, font] : fonts) dir.write(font.file, font.bytes);
}

}  // namespace gw::soak
