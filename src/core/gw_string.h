// SPDX-License-Identifier: MIT
//
// The owned, NUL-terminated text that every list, file and font record carries.
#pragma once

#include <memory>

class GW_FILE;
class GW_REG_EXP;

class GW_STRING {
  public:
    explicit GW_STRING(const char* s);
    /// A deep copy of `other`'s text.
    explicit GW_STRING(const GW_STRING* other);
    virtual ~GW_STRING() = default;
    GW_STRING(const GW_STRING&) = delete;
    GW_STRING& operator=(const GW_STRING&) = delete;

    /// The text, owned by this object.
    [[nodiscard]] const char* get_str() const { return str.get(); }
    /// The length in bytes, measured at each call.
    [[nodiscard]] int get_len() const;

    /// Replaces the text and returns the buffer. A new text at least as long as the current one, equal length
    /// included, gets a new buffer; a shorter one reuses the buffer. `s` may point into the current text.
    virtual const char* reset_str(const char* s);

    /// `strcmp` of the two texts: byte order, case-sensitive.
    int compare(const GW_STRING* other) const;
    /// 1 when the texts are equal, else 0.
    int equal(const GW_STRING* other) const;
    /// 1 when the text matches `re`, else 0.
    int match(GW_REG_EXP* re) const;
    /// Writes "[prefix ]len = LENGTH, str = TEXT" as a line to `file`; nothing when `file` is null.
    virtual void print(const char* prefix, GW_FILE* file) const;

  protected:
    std::unique_ptr<char[]> str;
};
