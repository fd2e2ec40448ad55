// SPDX-License-Identifier: MIT
//
// Small TrueType fonts for tests: every character is a square, and the names are whatever a test wants.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gw::test {

/// Numbers as font files have them, the highest byte first.
class BigEndian {
  public:
    BigEndian& u8(unsigned long value) { return add(value, 1); }
    BigEndian& u16(unsigned long value) { return add(value, 2); }
    BigEndian& u32(unsigned long value) { return add(value, 4); }
    BigEndian& bytes(std::string_view text) {
        bytes_ += text;
        return *this;
    }
    BigEndian& zeros(std::size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    [[nodiscard]] const std::string& str() const { return bytes_; }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

  private:
    BigEndian& add(unsigned long value, int count) {
        for (int i = count - 1; i >= 0; --i) bytes_.push_back(static_cast<char>(value >> 8 * i & 0xFF));
        return *this;
    }
    std::string bytes_;
};

struct SfntName {
    unsigned platform;
    unsigned encoding;
    unsigned language;
    unsigned kind;  ///< 1 is the family, 2 the style
    std::string bytes;
};

/// Letters of ASCII as UTF-16.
inline std::string utf16(std::string_view ascii) {
    BigEndian text;
    for (const char letter : ascii) text.u16(static_cast<unsigned char>(letter));
    return text.str();
}

/// Family and style, as English names for Windows.
inline std::vector<SfntName> windows_names(std::string_view family, std::string_view style = "Regular") {
    return {{3, 1, 0x409, 1, utf16(family)}, {3, 1, 0x409, 2, utf16(style)}};
}

class SfntMaker {
  public:
    std::vector<SfntName> names = windows_names("Square");
    std::u32string characters = U"ABC";  ///< ascending; the first one is glyph 1
    unsigned charmap = 10;  ///< the table of characters is for 10 all of Unicode, 1 its first plane

    /// The font as a file.
    [[nodiscard]] std::string make(unsigned long version = 0x00010000) const {
        return assembled(version, tables(), 0);
    }
    /// A file with this font `count` times, of which the header promises `promised`.
    [[nodiscard]] std::string make_collection(unsigned count, unsigned long promised) const {
        BigEndian file;
        file.bytes("ttcf").u32(0x00010000).u32(promised);
        const std::size_t header = file.size() + 4UL * count;
        const std::size_t size = assembled(0x00010000, tables(), 0).size();
        for (unsigned i = 0; i < count; ++i) file.u32(header + i * size);
        for (unsigned i = 0; i < count; ++i) file.bytes(assembled(0x00010000, tables(), header + i * size));
        return file.str();
    }

    /// A file with all these fonts.
    [[nodiscard]] static std::string collection_of(const std::vector<SfntMaker>& makers) {
        BigEndian file;
        file.bytes("ttcf").u32(0x00010000).u32(makers.size());
        BigEndian fonts;
        const std::size_t header = file.size() + 4 * makers.size();
        for (const SfntMaker& maker : makers) {
            file.u32(header + fonts.size());
            fonts.bytes(assembled(0x00010000, maker.tables(), header + fonts.size()));
        }
        return file.bytes(fonts.str()).str();
    }

  private:
    static constexpr unsigned EM = 1000;
    using Tables = std::map<std::string, std::string>;

    [[nodiscard]] unsigned long glyphs() const { return characters.size() + 1; }

    static std::string square() {
        BigEndian glyph;
        glyph.u16(1).u16(100).u16(0).u16(600).u16(500).u16(3).u16(0);
        glyph.u8(1).u8(1).u8(1).u8(1);
        glyph.u16(100).u16(500).u16(0).u16(0xFE0C).u16(0).u16(0).u16(500).u16(0);
        return glyph.zeros(2).str();
    }

    [[nodiscard]] std::string name_table() const {
        BigEndian table;
        BigEndian texts;
        table.u16(0).u16(names.size()).u16(6 + 12 * names.size());
        for (const SfntName& name : names) {
            table.u16(name.platform).u16(name.encoding).u16(name.language).u16(name.kind);
            table.u16(name.bytes.size()).u16(texts.size());
            texts.bytes(name.bytes);
        }
        return table.bytes(texts.str()).str();
    }

    [[nodiscard]] std::string cmap() const {
        BigEndian table;
        table.u16(0).u16(1).u16(3).u16(charmap).u32(12);
        table.u16(12).u16(0).u32(16 + 12 * characters.size()).u32(0).u32(characters.size());
        for (std::size_t i = 0; i < characters.size(); ++i)
            table.u32(characters[i]).u32(characters[i]).u32(i + 1);
        return table.str();
    }

    [[nodiscard]] Tables tables() const {
        Tables all;
        BigEndian head;
        head.u32(0x00010000).u32(0x00010000).u32(0).u32(0x5F0F3CF5).u16(0).u16(EM).zeros(16);
        head.u16(0).u16(0).u16(600).u16(500).u16(0).u16(8).u16(2).u16(1).u16(0);
        all["head"] = head.str();
        BigEndian hhea;
        hhea.u32(0x00010000).u16(800).u16(0xFF38).u16(0).u16(700).zeros(22).u16(glyphs());
        all["hhea"] = hhea.str();
        BigEndian maxp;
        maxp.u32(0x00010000).u16(glyphs()).u16(4).u16(1).u16(0).u16(0).u16(2).zeros(16);
        all["maxp"] = maxp.str();
        BigEndian hmtx;
        BigEndian loca;
        BigEndian glyf;
        for (std::size_t i = 0; i < glyphs(); ++i) {
            hmtx.u16(700).u16(100);
            loca.u32(glyf.size());
            glyf.bytes(square());
        }
        loca.u32(glyf.size());
        all["hmtx"] = hmtx.str();
        all["loca"] = loca.str();
        all["glyf"] = glyf.str();
        all["cmap"] = cmap();
        all["name"] = name_table();
        all["post"] = BigEndian().u32(0x00030000).zeros(28).str();
        return all;
    }

    /// The font in a file, `start` bytes after its beginning.
    static std::string assembled(unsigned long version, const Tables& tables, std::size_t start) {
        BigEndian file;
        BigEndian content;
        file.u32(version).u16(tables.size()).zeros(6);
        const std::size_t header = start + 12 + 16 * tables.size();
        for (const auto& [tag, bytes] : tables) {
            file.bytes(tag).u32(0).u32(header + content.size()).u32(bytes.size());
            content.bytes(bytes).zeros((4 - bytes.size() % 4) % 4);
        }
        return file.bytes(content.str()).str();
    }
};

}  // namespace gw::test
