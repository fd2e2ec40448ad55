// SPDX-License-Identifier: MIT
//
// Matches a file or font name against a pattern and remembers the parts of the match.
//
// Kept: the dot of a file pattern matches any character. So a name that ends in "xps" matches ".ps$".
#pragma once

#include <array>
#include <string>

#include "core/gw_base.h"
#include "core/pattern.h"

class GW_REG_EXP : public GW_BASE {
  public:
    enum MATCH_STR_TYPE { MATCH = 1, PREFIX = 2, SUFFIX = 3 };

    /// Compiles `pattern`, of which at most 63 characters count. "." matches any character, "$" anchors at
    /// the end.
    explicit GW_REG_EXP(const char* pattern);

    /// Clears the remembered match and looks for the pattern in `s`, which must outlive the calls of
    /// `get_match_part`. Returns 1 on a match, else 0.
    int string_match(const char* s);

    /// Copies the chosen part of the last match, terminated and cut to `capacity - 1` bytes, into `dst`;
    /// returns the length copied, 0 when nothing has matched.
    int get_match_part(char* dst, MATCH_STR_TYPE which, std::size_t capacity) const;
    template <std::size_t N>
    int get_match_part(char (&dst)[N], MATCH_STR_TYPE which) const {
        return get_match_part(dst, which, N);
    }

    /// Writes "[prefix ]reg_exp = PATTERN" as a line to `file`; nothing when `file` is null.
    void print(const char* prefix, GW_FILE* file) const override;

  private:
    std::array<char, 64> pattern{};
    gw::Pattern compiled;
    const char* match_str = nullptr;
    int match_len = 0;
    const char* prefix_str = nullptr;
    int prefix_len = 0;
    const char* suffix_str = nullptr;
    int suffix_len = 0;
};
