// SPDX-License-Identifier: MIT
#include "fontfiles/charset_table.h"

#include <iconv.h>

#include <array>
#include <string_view>

namespace gw {

namespace {

/// What makes the bytes of an encoding from a code of a font.
enum class Form {
    SINGLE,     ///< one byte
    DOUBLE,     ///< two bytes
    HIGH,       ///< two bytes, both with the highest bit
    AFTER_SS3,  ///< the same behind 0x8F
};

struct Charset {
    std::string_view beginning;  ///< of the charset's name
    const char* encoding;  ///< for iconv; where it ends in a hyphen, the rest of the charset's name follows
    Form form;
};
constexpr std::array<Charset, 16> CHARSETS = {{
    {"iso8859-", "ISO-8859-", Form::SINGLE},
    {"koi8-", "KOI8-", Form::SINGLE},
    {"microsoft-cp12", "CP12", Form::SINGLE},
    {"ibm-cp", "CP", Form::SINGLE},
    {"tis620", "TIS-620", Form::SINGLE},
    {"viscii", "VISCII", Form::SINGLE},
    {"armscii-8", "ARMSCII-8", Form::SINGLE},
    {"jisx0201", "SHIFT_JISX0213", Form::SINGLE},
    {"jisx0208", "EUC-JP", Form::HIGH},
    {"jisx0212", "EUC-JP", Form::AFTER_SS3},
    {"gb2312", "GB2312", Form::HIGH},
    {"ksc5601", "EUC-KR", Form::HIGH},
    {"ksx1001", "EUC-KR", Form::HIGH},
    {"gbk", "GBK", Form::DOUBLE},
    {"gb18030", "GB18030", Form::DOUBLE},
    {"big5", "BIG5", Form::DOUBLE},
}};

/// Rows of the table for several charsets: the rest of the charset's name tells them apart.
std::string encoding_of(const Charset& charset, const std::string& name) {
    std::string encoding = charset.encoding;
    const std::string_view row = charset.beginning;
    if (!row.ends_with('-') && !row.ends_with("cp12") && !row.ends_with("cp")) return encoding;
    return encoding + name.substr(row.size());
}

/// Only such names are handed to the system, which sees more in others.
bool is_plain(const std::string& name) {
    constexpr std::size_t LONGEST = 40;
    return name.size() <= LONGEST &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789.-_") == std::string::npos;
}

iconv_t no_converter() {
    return reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

struct CharsetTable::Converter {
    iconv_t handle = no_converter();
    Form form = Form::SINGLE;

    Converter() = default;
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() {
        if (handle != no_converter()) ::iconv_close(handle);
    }
};

CharsetTable::CharsetTable(const std::string& charset) : converter_(std::make_unique<Converter>()) {
    for (const Charset& known : CHARSETS) {
        if (!is_plain(charset) || !charset.starts_with(known.beginning)) continue;
        converter_->handle = ::iconv_open("UCS-4BE", encoding_of(known, charset).c_str());
        converter_->form = known.form;
        return;
    }
}

CharsetTable::~CharsetTable() = default;

bool CharsetTable::is_known() const {
    return converter_->handle != no_converter();
}

namespace {

/// The bytes of a code; "" for one that the form has no bytes for.
std::string bytes_of(unsigned long code, Form form) {
    if (form == Form::SINGLE) return code < 0x100 ? std::string(1, static_cast<char>(code)) : "";
    const bool is_double = form == Form::DOUBLE;
    if (code > 0xFFFF || (!is_double && code < 0x100)) return "";
    if (is_double && code < 0x100) return {static_cast<char>(code)};
    const unsigned long high = is_double ? 0 : 0x80;
    const std::string both = {static_cast<char>(code >> 8 | high), static_cast<char>((code & 0xFF) | high)};
    return form == Form::AFTER_SS3 ? '\x8F' + both : both;
}

}  // namespace

char32_t CharsetTable::unicode_of(unsigned long code) const {
    std::string bytes = bytes_of(code, converter_->form);
    if (!is_known() || bytes.empty()) return 0;
    std::array<char, 4> character = {};
    char* in = bytes.data();
    char* out = character.data();
    std::size_t left = bytes.size();
    std::size_t room = character.size();
    ::iconv(converter_->handle, nullptr, nullptr, nullptr, nullptr);
    if (::iconv(converter_->handle, &in, &left, &out, &room) != 0 || left != 0 || room != 0) return 0;
    char32_t unicode = 0;
    for (const char byte : character) unicode = unicode << 8 | static_cast<unsigned char>(byte);
    return unicode;
}

}  // namespace gw
