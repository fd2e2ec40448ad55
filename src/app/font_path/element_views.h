// SPDX-License-Identifier: MIT
//
// In which state the elements of a font path are on the running server, in words and a colour.
#pragma once

#include <string>
#include <vector>

#include "app/kit/table_list.h"
#include "fontpath/path_element.h"
#include "texts/messages.h"

namespace gw {

struct ElementView {
    Message state = Message::ELEMENT_NOT_KNOWN;
    Tone tone = Tone::PLAIN;
    bool is_served = false;  ///< on the server's path
    std::string why;         ///< a sentence, or several; "" when there is nothing more to say
};

/// For each element its state. All directories are first asked whether they answer.
[[nodiscard]] std::vector<ElementView> element_views(const std::vector<std::string>& elements);

}  // namespace gw
