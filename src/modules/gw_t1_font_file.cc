// SPDX-License-Identifier: MIT
#include "modules/gw_t1_font_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "core/font_policy.h"

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

/// The text in front of the next of the characters `ends`, of which those at the beginning are skipped; both
/// go from `rest`. Empty when there is none.
std::string_view next_token(std::string_view& rest, std::string_view ends) {
    rest.remove_prefix(std::min(rest.find_first_not_of(ends), rest.size()));
    const std::string_view token = rest.substr(0, rest.find_first_of(ends));
    rest.remove_prefix(std::min(token.size() + 1, rest.size()));
    return token;
}

/// The part of the text in front of its first line end.
std::string_view first_line(std::string_view text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    return line.substr(0, line.find('\r'));
}

/// A comment begins with a single "%"; "%!" and "%%" lines are structure.
bool is_comment(std::string_view line) {
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
    block_left = {};
    is_at_end = false;
}

int GW_T1_FONT_FILE::set_font_info(GWFont* font) {
    if (is_open()) return 1;
    gw::Result<gw::ReadableFile> file = gw::open_to_read(get_path());
    if (file) set_font_info(*font, std::move(file->fd));
    return 1;
}

void GW_T1_FONT_FILE::set_font_info(GWFont& the_font, gw::Result<gw::Descriptor> file) {
    if (!file) return;
    GWFont* font = &the_font;
    file_ = std::move(*file);
    init();
    set_default_font_info(font);
    read_buf();
    skip_till_first_percent();
    current_foundry() = UNKNOWN_FOUNDRY;
    std::string_view line;
    while (get_ascii_line(line)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos || line[start] != '/') continue;
        line.remove_prefix(start + 1);
        process_font_file_field(font, line.substr(0, line.find('\0')));
    }
    (void)file_.close();
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
    filled =
        kept + static_cast<int>(take(buffer.data() + kept, static_cast<std::size_t>(BUFFER_SIZE - kept)));
    unread = 0;
    buffer[static_cast<std::size_t>(filled)] = '\0';
}

std::size_t GW_T1_FONT_FILE::take(char* out, std::size_t wanted) {
    std::size_t taken = 0;
    while (taken < wanted) {
        if (block_left.empty() && !read_block()) break;
        const std::size_t now = block_left.copy(out + taken, wanted - taken);
        block_left.remove_prefix(now);
        taken += now;
    }
    return taken;
}

/// Reads the next block; false when there is none. A block that is not full is the last one.
bool GW_T1_FONT_FILE::read_block() {
    if (is_at_end) return false;
    ssize_t got = 0;
    do got = ::read(file_.get(), block.data(), block.size());
    while (got < 0 && errno == EINTR);
    is_at_end = got < static_cast<ssize_t>(block.size());
    if (got <= 0) return false;
    block_left = {block.data(), static_cast<std::size_t>(got)};
    return true;
}

void GW_T1_FONT_FILE::skip_till_first_percent() {
    const auto* percent = std::find(buffer.cbegin() + unread, buffer.cbegin() + filled, '%');
    unread = static_cast<int>(percent - buffer.cbegin());
}

// A line that is longer than the buffer is cut there; the rest is returned as the next line.
bool GW_T1_FONT_FILE::get_line_from_buf(std::string_view& line) {
    if (unread + LINE_RESERVE > filled) read_buf();
    if (unread == filled) return false;
    line = first_line({buffer.data() + unread, static_cast<std::size_t>(filled - unread)});
    unread = std::min(unread + static_cast<int>(line.size()) + 1, filled);
    return true;
}

bool GW_T1_FONT_FILE::get_ascii_line(std::string_view& line) {
    do {
        if (!get_line_from_buf(line)) return false;
    } while (is_comment(line));
    const bool header_ends = !line.starts_with('%') && line.find("currentfile") != std::string::npos &&
                             line.find("eexec") != std::string::npos;
    return !header_ends;
}

void GW_T1_FONT_FILE::process_font_file_field(GWFont* font, std::string_view text) const {
    std::string_view rest = text;
    // Kept: a header key ends at a blank.
    const std::string_view key_name =
        next_token(rest, gw::font_policy().lets_values_touch_keys() ? NAME_ENDS : " ");
    const int key = key_name.empty() ? UNKNOWN_KEY : keys->get_id(key_name);
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
            value = next_token(rest, " \t\n");
            font->set_field(GWFont::SLANT, std::atoi(value.c_str()) != 0 ? "i" : "r");
            break;
        case IS_FIXED_PITCH:
            font->set_field(GWFont::SPACING, next_token(rest, " ") == "true" ? "m" : "p");
            break;
        case ENCODING:
            set_encoding(font, next_token(rest, " "));
            break;
        case NOTICE:
            current_foundry() = UNKNOWN_FOUNDRY;
            foundries->get_foundry_symbol_from_line(current_foundry(), std::string(text).c_str());
            font->set_field(GWFont::FOUNDRY, current_foundry().c_str());
            break;
        default:  // the full name and the copyright are known keys that set nothing
            break;
    }
}

// Kept: the registry of a special encoding is the foundry known so far. For example "adobe-fontspecific".
void GW_T1_FONT_FILE::set_encoding(GWFont* font, std::string_view encoding) {
    const bool standard = encoding == "StandardEncoding";
    font->set_field(GWFont::CHARSET_REGISTRY, standard ? "iso8859" : current_foundry().c_str());
    font->set_field(GWFont::CHARSET_ENCODING, standard ? "1" : "fontspecific");
}
