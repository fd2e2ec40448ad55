// SPDX-License-Identifier: MIT
//
// Reads the clear-text header of a Type 1 outline file (format: Adobe Type 1 Font Format, chapter 2; ".pfb"
// segments: Adobe Technical Note 5040) and fills the XLFD fields of a font from it.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/directory.h"
#include "core/failure.h"
#include "core/gw_file.h"
#include "core/gw_token_table.h"
#include "fontfiles/gw_foundry_file.h"
#include "model/gw_font.h"

class GW_T1_FONT_FILE : public GW_FILE {
  public:
    /// The codes of the header keys in the key table.
    enum KEY {
        FAMILY_NAME = 0,
        FULL_NAME = 1,
        ENCODING = 2,
        ITALIC_ANGLE = 3,
        COPYRIGHT = 4,
        NOTICE = 5,
        IS_FIXED_PITCH = 6,
        WEIGHT = 7,
        UNKNOWN_KEY = -1,
    };
    static constexpr int BUFFER_SIZE = 1024;
    /// With fewer unread bytes than this the buffer is filled up. A header line is expected to be shorter.
    static constexpr int LINE_RESERVE = 341;
    /// The file is read in blocks of this size. Most headers fit into one.
    static constexpr std::size_t BLOCK_SIZE = 4096;

    GW_T1_FONT_FILE(const char* name, const char* dir, int file_type);
    explicit GW_T1_FONT_FILE(const GW_FILE_SPEC* spec);

    void set_skip_comment_flag(int flag) { skip_comment = flag; }
    /// The caller keeps the ownership of both tables, which must outlive the reading.
    void set_token_table(const GW_TOKEN_TABLE* table) { keys = table; }
    void set_foundry_file(const GW_FOUNDRY_FILE* table) { foundries = table; }

    /// Reads the header and fills `font`; a file that cannot be opened leaves it untouched. Returns 1.
    int set_font_info(GWFont* font);
    /// The same with a file that was opened for reading, if it was.
    void set_font_info(GWFont& font, gw::Result<gw::Descriptor> file);
    /// Sets the fields that are the same for every outline font.
    static void set_default_font_info(GWFont* font);

  private:
    void init();
    void read_buf();
    std::size_t take(char* out, std::size_t wanted);
    bool read_block();
    void skip_till_first_percent();
    bool get_line_from_buf(std::string_view& line);
    bool get_ascii_line(std::string_view& line);
    void process_font_file_field(GWFont* font, std::string_view text) const;
    static void set_encoding(GWFont* font, std::string_view encoding);

    std::array<char, BUFFER_SIZE + 1> buffer{};
    int filled = 0;
    int unread = 0;  // index of the next unread byte
    gw::Descriptor file_;
    std::array<char, BLOCK_SIZE> block{};
    std::string_view block_left;
    bool is_at_end = false;
    int skip_comment = 0;
    const GW_TOKEN_TABLE* keys = nullptr;
    const GW_FOUNDRY_FILE* foundries = nullptr;
};
