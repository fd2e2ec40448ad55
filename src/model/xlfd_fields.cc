// SPDX-License-Identifier: MIT
#include "model/xlfd_fields.h"

#include <algorithm>
#include <utility>

namespace gw {

void XlfdFields::set(std::size_t field, std::string_view value) {
    if (text_.empty()) join({});
    value = value.substr(0, LIMIT);
    const std::size_t before = (*this)[field].size();
    text_.replace(starts_.at(field), before, value);
    for (std::size_t i = field + 1; i < COUNT; ++i)
        starts_.at(i) = static_cast<std::uint16_t>(starts_.at(i) + value.size() - before);
}

void XlfdFields::take(std::string_view name) {
    name.remove_prefix(std::min(name.find('-'), name.size() - 1) + 1);
    Texts texts;
    for (std::string_view& text : texts) {
        const std::size_t dash = std::min(name.find('-'), name.size());
        text = name.substr(0, dash);
        name.remove_prefix(std::min(dash + 1, name.size()));
    }
    join(texts);
}

std::string XlfdFields::name() const {
    std::string name;
    for (std::size_t i = 0; i < COUNT; ++i) (name += '-') += (*this)[i];
    return name;
}

void XlfdFields::join(const Texts& texts) {
    std::size_t size = 0;
    for (const std::string_view text : texts) size += std::min(text.size(), LIMIT) + 1;
    std::string joined;
    joined.reserve(size);
    for (std::size_t i = 0; i < COUNT; ++i) {
        starts_.at(i) = static_cast<std::uint16_t>(joined.size());
        (joined += texts.at(i).substr(0, LIMIT)) += '\0';
    }
    text_ = std::move(joined);
}

}  // namespace gw
