// SPDX-License-Identifier: MIT
#include "modules/gw_t1_font_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/font_policy.h"
#include "core/gw_token_string.h"

namespace {

constexpr const char* UNKNOWN_FOUNDRY = "unknown";
// The characters that end a name in PostScript: white space and the delimiters.
constexpr const char* NAME_ENDS = " \t\r\n\f()<>[]{}/%";

/// The foundry found so far in the file that is being read.
std::string& current_foundry() {
    static std::string foundry = UNKNOWN_FOUNDRY;
    return foundry;
}

/// Sets `value` to the text between the first "(" and the next ")"; false when there are none.
bool parenthesized(std::string& value, std::string_view text) {
    const std::size_t opening = text.find('(');
    if (opening == std::string_view::npos) return false;
    const std::size_t closing = text.find(')', opening);
    if (closing == std::string_view::npos) return false;
    value = text.substr(opening + 1, closing - opening - 1);
    return true;
}

bool is_line_end(char c) {
    return c == '\r' || c == '\n';
}

/// A comment begins with a single "%"; "%!" and "%%" lines are structure.
bool is_comment(const std::string& line) {
    return line.starts_with('%') && (line.size() == 1 || (line[1] != '!' && line[1] != '%'));
}

}  // namespace

GW_T1_FONT_FILE::GW_T1_FONT_FILE(const char* file_name, const char* file_dir, int type)
    : GW_FILE(file_name, file_dir, type) {
    init();
}

GW_T1_FONT_FILE::GW_T1_FONT_FILE(const GW_FILE_SPEC* spec) : GW_FILE(spec) {
    init();
}

void GW_T1_FONT_FILE::init() {
    filled = 0;
    unread = 0;
    buffer[0] = '\0';
}

int GW_T1_FONT_FILE::set_font_info(GWFont* font) {
    if (open("r") == 0) return 1;
    init();
    set_default_font_info(font);
    read_buf();
    skip_till_first_percent();
    current_foundry() = UNKNOWN_FOUNDRY;
    std::string line;
    while (get_ascii_line(line)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start != std::string::npos && line[start] == '/')
            process_font_file_field(font, line.c_str() + start + 1);
    }
    close();
    return 1;
}

void GW_T1_FONT_FILE::set_default_font_info(GWFont* font) {
    font->set_field(GWFont::PIXEL_SIZE, "0");
    font->set_field(GWFont::POINT_SIZE, "0");
    font->set_field(GWFont::AVERAGE_WIDTH, "0");
    font->set_field(GWFont::RESOLUTION_X, "0");
    font->set_field(GWFont::RESOLUTION_Y, "0");
    font->set_field(GWFont::SPACING, "p");
    font->set_field(GWFont::SETWIDTH_NAME, "normal");
}

void GW_T1_FONT_FILE::read_buf() {
    const int kept = filled - unread;
    std::memmove(buffer.data(), buffer.data() + unread, static_cast<std::size_t>(kept));
    filled = kept + read(buffer.data() + kept, BUFFER_SIZE - kept);
    unread = 0;
    buffer[static_cast<std::size_t>(filled)] = '\0';
}

void GW_T1_FONT_FILE::skip_till_first_percent() {
    const auto* percent = std::find(buffer.cbegin() + unread, buffer.cbegin() + filled, '%');
    unread = static_cast<int>(percent - buffer.cbegin());
}

// A line that is longer than the buffer is cut there; the rest is returned as the next line.
bool GW_T1_FONT_FILE::get_line_from_buf(std::string& line) {
    if (unread + LINE_RESERVE > filled) read_buf();
    if (unread == filled) return false;
    const auto* start = buffer.cbegin() + unread;
    const auto* end = std::find_if(start, buffer.cbegin() + filled, is_line_end);
    line.assign(start, end);
    unread = std::min(static_cast<int>(end - buffer.cbegin()) + 1, filled);
    return true;
}

bool GW_T1_FONT_FILE::get_ascii_line(std::string& line) {
    do {
        if (!get_line_from_buf(line)) return false;
    } while (is_comment(line));
    const bool header_ends = !line.starts_with('%') && line.find("currentfile") != std::string::npos &&
                             line.find("eexec") != std::string::npos;
    return !header_ends;
}

void GW_T1_FONT_FILE::process_font_file_field(GWFont* font, const char* text) const {
    GW_TOKEN_STRING tokens(text);
    int key = UNKNOWN_KEY;
    // Kept: a header key ends at a blank.
    tokens.get_first_token_id(key, keys, gw::font_policy().lets_values_touch_keys() ? NAME_ENDS : " ");
    std::string value;
    switch (key) {
        case FAMILY_NAME:
            if (parenthesized(value, text)) font->set_field(GWFont::TYPEFACE_NAME, value.c_str());
            break;
        case WEIGHT:
            if (parenthesized(value, text)) font->set_field(GWFont::WEIGHT_NAME, value.c_str());
            break;
        case ITALIC_ANGLE:
            // Kept: an italic angle of less than one degree is upright.
            tokens.get_next_token(value, " \t\n");
            font->set_field(GWFont::SLANT, std::atoi(value.c_str()) != 0 ? "i" : "r");
            break;
        case IS_FIXED_PITCH:
            tokens.get_next_token(value, " ");
            font->set_field(GWFont::SPACING, value == "true" ? "m" : "p");
            break;
        case ENCODING:
            tokens.get_next_token(value, " ");
            set_encoding(font, value);
            break;
        case NOTICE:
            current_foundry() = UNKNOWN_FOUNDRY;
            foundries->get_foundry_symbol_from_line(current_foundry(), text);
            font->set_field(GWFont::FOUNDRY, current_foundry().c_str());
            break;
        default:  // the full name and the copyright are known keys that set nothing
            break;
    }
}

// Kept: the registry of a special encoding is the foundry known so far. For example "adobe-fontspecific".
void GW_T1_FONT_FILE::set_encoding(GWFont* font, const std::string& encoding) {
    const bool standard = encoding == "StandardEncoding";
    font->set_field(GWFont::CHARSET_REGISTRY, standard ? "iso8859" : current_foundry().c_str());
    font->set_field(GWFont::CHARSET_ENCODING, standard ? "1" : "fontspecific");
}
