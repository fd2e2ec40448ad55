// SPDX-License-Identifier: MIT
//
// The memory that FreeType gets for one font: a font that asks for more, which none does that is meant well,
// cannot be opened.
#pragma once

#include <ft2build.h>
#include FT_SYSTEM_H

#include <cstddef>

namespace gw {

class FontMemory {
  public:
    FontMemory();
    FontMemory(const FontMemory&) = delete;
    FontMemory& operator=(const FontMemory&) = delete;

    /// For `FT_New_Library`; valid as long as this object.
    [[nodiscard]] FT_Memory get() { return &memory_; }

    /// In bytes: all blocks together, and one block.
    static constexpr std::size_t LIMIT = 96UL * 1024 * 1024;
    static constexpr std::size_t BLOCK_LIMIT = 48UL * 1024 * 1024;

  private:
    static void* allocate(FT_Memory memory, long size);
    static void release(FT_Memory memory, void* block);
    static void* resize(FT_Memory memory, long old_size, long new_size, void* block);
    static FontMemory& of(FT_Memory memory) { return *static_cast<FontMemory*>(memory->user); }

    [[nodiscard]] bool may_have(long size) const;

    FT_MemoryRec_ memory_;
    std::size_t used_ = 0;
};

}  // namespace gw
