// SPDX-License-Identifier: MIT
//
// BDF and PCF fonts for tests. Every character is a filled box of 8 by 8 pixels.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace gw::test {

struct BitmapMaker {
    std::string family = "Boxes";
    std::string registry = "ISO10646";
    std::string encoding = "1";
    std::vector<int> codes = {65, 66, 67};

    [[nodiscard]] std::string make_bdf() const {
        std::string text = "STARTFONT 2.1\nFONT -misc-" + family + "-medium-r-normal--8-80-75-75-c-80-" +
                           registry + '-' + encoding +
                           "\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 7\nFAMILY_NAME \"" +
                           family + "\"\nCHARSET_REGISTRY \"" + registry + "\"\nCHARSET_ENCODING \"" +
                           encoding + "\"\nPIXEL_SIZE 8\nSPACING \"C\"\nFONT_ASCENT 8\nFONT_DESCENT 0\n" +
                           "ENDPROPERTIES\nCHARS " + std::to_string(codes.size()) + '\n';
        for (const int code : codes) {
            text +=
                "STARTCHAR c" + std::to_string(code) + "\nENCODING " + std::to_string(code) +
                "\nSWIDTH 1000 0\nDWIDTH 8 0\nBBX 8 8 0 0\nBITMAP\nFF\nFF\nFF\nFF\nFF\nFF\nFF\nFF\nENDCHAR\n";
        }
        return text + "ENDFONT\n";
    }

    [[nodiscard]] std::string make_pcf() const {
        const std::string tables[] = {properties(), accelerators(), metrics(), bitmaps(), encodings()};
        const unsigned long types[] = {1, 2, 4, 8, 32};
        constexpr unsigned long COUNT = 5;
        std::string contents =
            "\1"
            "fcp" +
            low(COUNT, 4);
        std::string content;
        for (std::size_t i = 0; i < COUNT; ++i) {
            contents += low(types[i], 4) + tables[i].substr(0, 4) + low(tables[i].size(), 4) +
                        low(8 + 16 * COUNT + content.size(), 4);
            content += tables[i];
        }
        return contents + content;
    }

  private:
    static std::string low(unsigned long number, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) text.push_back(static_cast<char>(number >> 8 * i & 0xFF));
        return text;
    }

    static void pad(std::string& table) { table.resize((table.size() + 3) / 4 * 4); }

    [[nodiscard]] std::string properties() const {
        const std::pair<std::string, std::string> all[] = {
            {"FAMILY_NAME", family}, {"CHARSET_REGISTRY", registry}, {"CHARSET_ENCODING", encoding}};
        std::string strings;
        std::string table = low(0, 4) + low(std::size(all), 4);
        for (const auto& [name, value] : all) {
            table += low(strings.size(), 4) + low(1, 1) + low(strings.size() + name.size() + 1, 4);
            strings += name + '\0' + value + '\0';
        }
        pad(table);
        table += low(strings.size(), 4) + strings;
        pad(table);
        return table;
    }

    /// left, right, width, ascent, descent, attributes
    static std::string box() { return low(0, 2) + low(8, 2) + low(8, 2) + low(8, 2) + low(0, 2) + low(0, 2); }

    static std::string accelerators() {
        return low(0, 4) + low(0, 8) + low(8, 4) + low(0, 4) + low(0, 4) + box() + box();
    }

    [[nodiscard]] std::string metrics() const {
        std::string table = low(0, 4) + low(codes.size(), 4);
        for (std::size_t i = 0; i < codes.size(); ++i) table += box();
        return table;
    }

    [[nodiscard]] std::string bitmaps() const {
        std::string table = low(0, 4) + low(codes.size(), 4);
        for (std::size_t i = 0; i < codes.size(); ++i) table += low(8 * i, 4);
        for (const unsigned long padding : {1UL, 2UL, 4UL, 8UL}) table += low(8 * padding * codes.size(), 4);
        return table + std::string(8 * codes.size(), '\xFF');
    }

    /// The codes are below 256.
    [[nodiscard]] std::string encodings() const {
        std::string table = low(0, 4) + low(0, 2) + low(255, 2) + low(0, 2) + low(0, 2) + low(0, 2);
        for (int code = 0; code < 256; ++code) {
            const auto found = std::find(codes.begin(), codes.end(), code);
            table +=
                low(found == codes.end() ? 0xFFFF : static_cast<unsigned long>(found - codes.begin()), 2);
        }
        pad(table);
        return table;
    }
};

}  // namespace gw::test
