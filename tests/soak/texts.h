// SPDX-License-Identifier: MIT
//
// Lists of texts, for comparisons and messages.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace gw::soak {

using Texts = std::vector<std::string>;

inline Texts sorted(Texts texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

inline std::string joined(const Texts& texts, const char* between) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : between) + text;
    return all;
}

}  // namespace gw::soak
