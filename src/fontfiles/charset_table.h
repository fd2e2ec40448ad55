// SPDX-License-Identifier: MIT
//
// The characters behind the codes of bitmap fonts, whose charsets are older than Unicode.
#pragma once

#include <memory>
#include <string>

namespace gw {

class CharsetTable {
  public:
    /// For a charset as XLFD names end in it ("iso8859-15", "jisx0208.1983-0"). A charset that is not known,
    /// or not to the system, has no characters.
    explicit CharsetTable(const std::string& charset);
    ~CharsetTable();
    CharsetTable(const CharsetTable&) = delete;
    CharsetTable& operator=(const CharsetTable&) = delete;

    [[nodiscard]] bool is_known() const;
    /// The character in Unicode; 0 if there is none.
    [[nodiscard]] char32_t unicode_of(unsigned long code) const;

  private:
    struct Converter;
    std::unique_ptr<Converter> converter_;
};

}  // namespace gw
