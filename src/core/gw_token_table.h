// SPDX-License-Identifier: MIT
//
// Maps short keywords (file-name extensions, resource-file sections, font header keys) to integer ids.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/gw_base.h"

class GW_TOKEN_TABLE : public GW_BASE {
  public:
    /// An empty table for at most `max_tokens` tokens of together about `max_chars` characters; `default_id`
    /// answers for unknown tokens.
    GW_TOKEN_TABLE(int max_tokens, int max_chars, int default_id);

    /// Adds a token; returns the new number of tokens, or -1 (and changes nothing) when the table is full.
    int add_token(int id, const char* text);

    /// The id of the first token that equals `text` (case-sensitive, whole token), or the default id.
    [[nodiscard]] int get_id(std::string_view text) const;
    /// The id of the longest token that is the end of `text`, in upper or lower case, with something in front
    /// of it; or the default id.
    [[nodiscard]] int get_id_of_end(std::string_view text) const;
    /// The length of the first token with that id; 0 if there is none.
    [[nodiscard]] int get_len(int id) const;
    /// Copies the first token with that id, terminated and cut to `capacity - 1` bytes, into `dst`; returns
    /// the length copied, 0 if there is none.
    int get_str(int id, char* dst, std::size_t capacity) const;
    template <std::size_t N>
    int get_str(int id, char (&dst)[N]) const {
        return get_str(id, dst, N);
    }

    [[nodiscard]] int get_default_id() const { return default_id; }

  private:
    struct Entry {
        int id;
        std::string text;
    };
    [[nodiscard]] const Entry* find(int id) const;

    std::vector<Entry> entries;
    std::size_t max_tokens;
    int default_id;
};
