// SPDX-License-Identifier: MIT
#include "texts/sentences.h"

#include <cstddef>

#include "texts/messages.h"

namespace gw {

namespace {

Message message_for(diagnosis::Said said) {
    static constexpr Message MESSAGES[] = {
#define SENTENCE(number, name, text) Message::SAID_##name,
#include "diagnosis/sentences.def"
#undef SENTENCE
    };
    return MESSAGES[static_cast<std::size_t>(said)];
}

}  // namespace

std::string in_words(const diagnosis::Sentence& sentence) {
    return diagnosis::filled_in(text_of(message_for(sentence.said)), sentence.details);
}

}  // namespace gw
