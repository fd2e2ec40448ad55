// SPDX-License-Identifier: MIT
//
// A string that can be cut into tokens, and tokens that can be turned into ids.
//
// Tokenising uses the single hidden position of `strtok`: starting with one string ends the tokenising of any
// other. Only the string that was started last may be asked for its next token.
#pragma once

#include <memory>
#include <string>

#include "core/gw_string.h"

class GW_TOKEN_TABLE;

class GW_TOKEN_STRING : public GW_STRING {
  public:
    explicit GW_TOKEN_STRING(const char* s);

    /// Starts tokenising the working copy at any of the characters `delims` and returns the first token, or
    /// null. A second start without `reset_str(nullptr)` in between sees only the first token, because the
    /// copy was cut after it. Kept: a second tokenisation sees only the first token.
    const char* get_first_token(const char* delims);
    /// The same; also stores the token in `dst`, which is left alone when there is none.
    const char* get_first_token(std::string& dst, const char* delims);
    /// The following token, or null.
    const char* get_next_token(const char* delims);
    const char* get_next_token(std::string& dst, const char* delims);

    /// Takes the first or next token and sets `id` to the table's id for it, or to the table's default id
    /// when there is none.
    const char* get_first_token_id(int& id, const GW_TOKEN_TABLE* table, const char* delims);
    const char* get_next_token_id(int& id, const GW_TOKEN_TABLE* table, const char* delims);

    /// With a text: replaces the string and the working copy. With null: restores the working copy, so that
    /// tokenising can start again. Returns the string.
    const char* reset_str(const char* s) override;

    /// Writes "[prefix ]str = TEXT, tmp_str = WORKING COPY" as a line to `file`; nothing when `file` is null.
    void print(const char* prefix, GW_FILE* file) const override;

  private:
    void renew_work();

    std::unique_ptr<char[]> work;
};

/// Copies the first token of `str` into `dst`, which stays as it was when `str` has no token; returns 1.
int get_first_token_from_str(std::string& dst, const char* str, const char* delims);
