// SPDX-License-Identifier: MIT
//
// What the diagnosis says, in the user's language.
#pragma once

#include <string>

#include "diagnosis/sentence.h"

namespace gw {

std::string in_words(const diagnosis::Sentence& sentence);

}  // namespace gw
