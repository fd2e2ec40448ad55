// SPDX-License-Identifier: MIT
#include "fontfiles/script_sample.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "fontfiles/unicode_text.h"

namespace gw {

namespace {

/// What kinds of characters there are, whatever the locale of the program.
class CharacterKinds {
  public:
    CharacterKinds()
        : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{})),
          combining_(locale_ != locale_t{} ? ::wctype_l("combining", locale_) : 0) {}
    ~CharacterKinds() {
        if (locale_ != locale_t{}) ::freelocale(locale_);
    }
    CharacterKinds(const CharacterKinds&) = delete;
    CharacterKinds& operator=(const CharacterKinds&) = delete;

    /// A letter that stands by itself.
    [[nodiscard]] bool is_letter(char32_t code) const {
        return is(code, &::iswalpha_l) && !is_combining(code);
    }
    /// Something that is seen.
    [[nodiscard]] bool is_sign(char32_t code) const {
        if (code >= 0xE000 && code <= 0xF8FF) return true;  // of the font's own making
        const bool is_layout = (code >= 0x2000 && code <= 0x206F) || code == 0x25CC;
        return !is_layout && is(code, &::iswgraph_l) && !is_combining(code);
    }

  private:
    [[nodiscard]] bool is(char32_t code, int (*kind)(wint_t, locale_t)) const {
        if (locale_ == locale_t{}) return code > ' ';
        return kind(static_cast<wint_t>(code), locale_) != 0;
    }
    [[nodiscard]] bool is_combining(char32_t code) const {
        return combining_ != 0 && ::iswctype_l(static_cast<wint_t>(code), combining_, locale_) != 0;
    }

    locale_t locale_;
    wctype_t combining_;
};

/// Where the letters of the scripts stand that do not fill one block of 128 codes.
struct Script {
    char32_t first;
    char32_t last;
};
constexpr std::array<Script, 13> SCRIPTS = {{{0x0370, 0x03FF},
                                             {0x0400, 0x052F},
                                             {0x0600, 0x06FF},
                                             {0x10A0, 0x10FF},
                                             {0x1200, 0x139F},
                                             {0x3040, 0x309F},
                                             {0x30A0, 0x30FF},
                                             {0x3400, 0x4DBF},
                                             {0x4E00, 0x9FFF},
                                             {0xAC00, 0xD7A3},
                                             {0x12000, 0x123FF},
                                             {0x13000, 0x1342F},
                                             {0x20000, 0x2FFFF}}};
constexpr char32_t HAN = 0x4E00;
constexpr char32_t HANGUL = 0xAC00;
constexpr char32_t BLOCK = 128;
constexpr char32_t LATIN_END = 0x250;

/// The first code of the script that a letter belongs to; 0 for Latin.
char32_t script_of(char32_t letter) {
    if (letter < LATIN_END) return 0;
    for (const Script& script : SCRIPTS)
        if (letter >= script.first && letter <= script.last) return script.first;
    return letter / BLOCK * BLOCK;
}

bool is_ascii_letter(char32_t code) {
    return (code >= U'A' && code <= U'Z') || (code >= U'a' && code <= U'z');
}

/// Whether the font has the letters of a text; of a text without letters all that is seen.
bool has_letters_of(const FontFace& font, const std::u32string& text, const CharacterKinds& kinds) {
    const bool has_letters =
        std::any_of(text.begin(), text.end(), [&](char32_t code) { return kinds.is_letter(code); });
    bool has_any = false;
    for (const char32_t code : text) {
        if (!(has_letters ? kinds.is_letter(code) : kinds.is_sign(code))) continue;
        if (!font.has(code)) return false;
        has_any = true;
    }
    return has_any;
}

using Letters = std::vector<char32_t>;

/// Latin if the font has it, else what it has most of. A Korean font has more Chinese characters than Korean
/// ones.
Letters of_one_script(const Letters& letters) {
    std::map<char32_t, Letters> scripts;
    for (const char32_t letter : letters) scripts[script_of(letter)].push_back(letter);
    if (std::any_of(letters.begin(), letters.end(), &is_ascii_letter)) return scripts[0];
    if (scripts.contains(HANGUL)) scripts.erase(HAN);
    const auto most = std::max_element(scripts.begin(), scripts.end(), [](const auto& a, const auto& b) {
        return a.second.size() < b.second.size();
    });
    return most == scripts.end() ? Letters{} : most->second;
}

std::string beginning_of(const Letters& letters) {
    std::string text;
    for (std::size_t i = 0; i < std::min(letters.size(), SAMPLE_LETTERS); ++i) append_utf8(text, letters[i]);
    return text;
}

}  // namespace

std::string sample_letters(const FontFace& font, std::string_view wanted) {
    const CharacterKinds kinds;
    if (has_letters_of(font, characters_of(wanted), kinds)) return std::string(wanted);
    Letters letters;
    Letters signs;
    for (const FontFace::Character& character : font.characters()) {
        if (kinds.is_letter(character.code)) letters.push_back(character.code);
        if (kinds.is_sign(character.code)) signs.push_back(character.code);
    }
    return beginning_of(letters.empty() ? signs : of_one_script(letters));
}

}  // namespace gw
