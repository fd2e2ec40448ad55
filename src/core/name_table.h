// SPDX-License-Identifier: MIT
//
// Many names, each with a place. A hash table in three pieces of memory: a listing asks for a name between
// two calls of the system, which leave nothing of a larger table in the processor's caches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

class NameTable {
  public:
    /// The name's place, 0-based: in the order in which names were first added. The name is copied. Throws
    /// `std::length_error` when all names together have more than 4 GB.
    std::size_t add(std::string_view name);
    [[nodiscard]] std::optional<std::size_t> find(std::string_view name) const;
    [[nodiscard]] std::size_t size() const { return ends_.size(); }
    /// Valid until another name is added.
    [[nodiscard]] std::string_view operator[](std::size_t place) const;

  private:
    struct Slot {
        std::uint32_t hash = 0;   // a part of it
        std::uint32_t place = 0;  // 1-based; 0 when the slot is free
    };
    [[nodiscard]] std::size_t slot_of(std::string_view name, std::size_t hash) const;
    void grow();

    std::string text_;                 // of all names
    std::vector<std::uint32_t> ends_;  // of each name in the text
    std::vector<Slot> slots_;          // a power of two, or none
};

}  // namespace gw
