// SPDX-License-Identifier: MIT
#include "diagnosis/sentence.h"

#include "core/text.h"

namespace gw::diagnosis {

namespace {

const char* text_of(Said said) {
    switch (said) {
#define SENTENCE(number, name, text) \
    case Said::name:                 \
        return text;
#include "diagnosis/sentences.def"
#undef SENTENCE
    }
    return "";
}

}  // namespace

std::string filled_in(std::string_view text, const std::vector<std::string>& details) {
    std::string filled;
    while (!text.empty()) {
        const bool is_place =
            text.size() > 2 && text[0] == '{' && text[1] >= '1' && text[1] <= '9' && text[2] == '}';
        if (is_place) {
            const auto place = static_cast<std::size_t>(text[1] - '1');
            if (place < details.size()) filled += escaped(details[place]);
        } else {
            filled += text.front();
        }
        text.remove_prefix(is_place ? 3 : 1);
    }
    return filled;
}

std::string in_english(const Sentence& sentence) {
    return filled_in(text_of(sentence.said), sentence.details);
}

}  // namespace gw::diagnosis
