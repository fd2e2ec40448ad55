// SPDX-License-Identifier: MIT
#include "core/name_table.h"

#include <functional>
#include <limits>
#include <stdexcept>
#include <utility>

namespace gw {

namespace {

constexpr std::size_t FEWEST_SLOTS = 16;
constexpr int KEPT_BITS = 32;  // of the hash; the lower ones choose the slot

std::size_t hash_of(std::string_view name) {
    return std::hash<std::string_view>()(name);
}

std::uint32_t kept(std::size_t hash) {
    return static_cast<std::uint32_t>(hash >> (std::numeric_limits<std::size_t>::digits - KEPT_BITS));
}

}  // namespace

std::string_view NameTable::operator[](std::size_t place) const {
    const std::size_t begin = place == 0 ? 0 : ends_.at(place - 1);
    return std::string_view(text_).substr(begin, ends_.at(place) - begin);
}

/// The slot that has the name, or else the free one that it would get.
std::size_t NameTable::slot_of(std::string_view name, std::size_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].place != 0 && (slots_[at].hash != kept(hash) || (*this)[slots_[at].place - 1] != name))
        at = (at + 1) & mask;
    return at;
}

std::optional<std::size_t> NameTable::find(std::string_view name) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[slot_of(name, hash_of(name))];
    return slot.place != 0 ? std::optional<std::size_t>(slot.place - 1) : std::nullopt;
}

std::size_t NameTable::add(std::string_view name) {
    if (3 * slots_.size() < 4 * (size() + 1)) grow();
    const std::size_t hash = hash_of(name);
    Slot& slot = slots_[slot_of(name, hash)];
    if (slot.place == 0) {
        if (name.size() > std::numeric_limits<std::uint32_t>::max() - text_.size())
            throw std::length_error("more names than there is room for");
        text_ += name;
        ends_.push_back(static_cast<std::uint32_t>(text_.size()));
        slot = {kept(hash), static_cast<std::uint32_t>(size())};
    }
    return slot.place - 1;
}

void NameTable::grow() {
    std::vector<Slot>(slots_.empty() ? FEWEST_SLOTS : 2 * slots_.size()).swap(slots_);
    for (std::size_t place = 0; place < size(); ++place) {
        const std::size_t hash = hash_of((*this)[place]);
        slots_[slot_of((*this)[place], hash)] = {kept(hash), static_cast<std::uint32_t>(place + 1)};
    }
}

}  // namespace gw
