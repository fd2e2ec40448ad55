// SPDX-License-Identifier: MIT
//
// The lines that our changes have put into an index. Programs that know nothing of our lock make an index
// anew and drop what they do not find themselves: mkfontdir every outline that "fonts.scale" does not list.
// The next change puts such a line back, as long as the font's file is the one that came with it. Format:
// the line "glyphward-lines 1", then a line for each: the file as in a journal, a blank, the index line.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "core/directory.h"
#include "fontfiles/index_edit.h"
#include "fontfiles/index_text.h"
#include "store/file_identity.h"

namespace gw {

class LineRegister {
  public:
    static constexpr std::string_view HEADING = "glyphward-lines 1\n";
    /// It keeps no more lines than these, and learns no further ones.
    static constexpr std::size_t MOST_LINES = 50000;

    /// What is in the text. A text of another kind is empty, and a line that nobody can have entered is left
    /// out.
    static LineRegister parse(std::string_view text);
    [[nodiscard]] std::string text() const;

    /// Puts back every line of a file that the index does not name at all. A line whose file has gone or has
    /// changed is forgotten.
    void put_back(IndexEdit& index, const Directory& fonts);
    /// Learns the lines that a change has entered, and forgets those that it has removed for good.
    void follow(const LineNumbers& before, const LineNumbers& differences, const Directory& fonts);

  private:
    std::map<std::string, FileIdentity, std::less<>> files_;  // by index line, newline included
};

}  // namespace gw
