// SPDX-License-Identifier: MIT
#include "app/kit/free_letters.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <utility>

namespace gw {

namespace {

bool is_latin(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The letters of a text, the best ones first: those that begin a word, then the others, and digits where no
/// letter is left.
std::string candidates(const std::string& text) {
    std::string best;
    std::string others;
    std::string digits;
    bool is_beginning = true;
    for (const char c : text) {
        if (is_latin(c)) (is_beginning ? best : others) += c;
        if (c >= '0' && c <= '9') digits += c;
        is_beginning = c == ' ' || c == '_' || c == '-' || c == '(';
    }
    return best + others + digits;
}

/// Matches texts with letters: a text whose letters are all taken gets one from a text that has another.
class Matching {
  public:
    Matching(std::vector<std::string> wanted, std::string_view taken) : wanted_(std::move(wanted)) {
        for (const char c : taken) owners_[lower_letter(c)] = NOBODY;
        given_.resize(wanted_.size(), NO_LETTER);
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            std::string tried;
            find_letter(i, tried);
        }
    }
    [[nodiscard]] const std::string& given() const { return given_; }

  private:
    static constexpr std::size_t NOBODY = static_cast<std::size_t>(-1);

    bool find_letter(std::size_t i, std::string& tried) {
        for (const bool may_ask_others : {false, true}) {
            for (const char c : wanted_[i]) {
                const auto owner = owners_.find(lower_letter(c));
                const bool is_free = owner == owners_.end();
                if (!is_free && (!may_ask_others || owner->second == NOBODY)) continue;
                if (!is_free) {
                    if (tried.find(lower_letter(c)) != std::string::npos) continue;
                    tried += lower_letter(c);
                    if (!find_letter(owner->second, tried)) continue;
                }
                owners_[lower_letter(c)] = i;
                given_[i] = c;
                return true;
            }
        }
        return false;
    }

    std::vector<std::string> wanted_;
    std::map<char, std::size_t> owners_;
    std::string given_;
};

/// The letters of a widget's name, without the words for what it is.
std::string letters_of_name(std::string name) {
    for (const std::string_view kind : {"_button", "_toggle", "_label", "_dlg"}) {
        if (const std::size_t place = name.find(kind); place != std::string::npos && place > 0)
            name.erase(place, kind.size());
    }
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    return candidates(name) + "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
}

}  // namespace

char lower_letter(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

bool has_latin(const std::string& text) {
    return std::any_of(text.begin(), text.end(), is_latin);
}

std::string free_letters(const std::vector<std::string>& texts, const std::vector<std::string>& names,
                         std::string_view taken) {
    std::vector<std::string> wanted;
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (texts[i].find_first_not_of(' ') == std::string::npos) {
            wanted.emplace_back();
        } else {
            wanted.push_back(has_latin(texts[i]) ? candidates(texts[i]) : letters_of_name(names[i]));
        }
    return Matching(std::move(wanted), taken).given();
}

}  // namespace gw
