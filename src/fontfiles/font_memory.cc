// SPDX-License-Identifier: MIT
#include "fontfiles/font_memory.h"

#include <malloc.h>

#include <cstdlib>

namespace gw {

FontMemory::FontMemory() : memory_{this, &allocate, &release, &resize} {}

bool FontMemory::may_have(long size) const {
    const auto wanted = static_cast<std::size_t>(size);
    return size >= 0 && wanted <= BLOCK_LIMIT && used_ <= LIMIT && wanted <= LIMIT - used_;
}

void* FontMemory::allocate(FT_Memory memory, long size) {
    FontMemory& self = of(memory);
    if (!self.may_have(size)) return nullptr;
    void* block = std::malloc(static_cast<std::size_t>(size));
    self.used_ += ::malloc_usable_size(block);
    return block;
}

void FontMemory::release(FT_Memory memory, void* block) {
    of(memory).used_ -= ::malloc_usable_size(block);
    std::free(block);
}

void* FontMemory::resize(FT_Memory memory, long /*old_size*/, long new_size, void* block) {
    FontMemory& self = of(memory);
    if (!self.may_have(new_size)) return nullptr;
    const std::size_t before = ::malloc_usable_size(block);
    void* moved = std::realloc(block, static_cast<std::size_t>(new_size));
    if (moved != nullptr) self.used_ += ::malloc_usable_size(moved) - before;
    return moved;
}

}  // namespace gw
