// SPDX-License-Identifier: MIT
#include "core/gw_string.h"

#include <cstring>
#include <string>

#include "core/gw_file.h"
#include "core/gw_reg_exp.h"

namespace {

std::unique_ptr<char[]> duplicate(const char* s) {
    const std::size_t size = std::strlen(s) + 1;
    auto copy = std::make_unique<char[]>(size);
    std::memcpy(copy.get(), s, size);
    return copy;
}

}  // namespace

GW_STRING::GW_STRING(const char* s) : str(duplicate(s)) {}

GW_STRING::GW_STRING(const GW_STRING* other) : str(duplicate(other->get_str())) {}

int GW_STRING::get_len() const {
    return static_cast<int>(std::strlen(str.get()));
}

const char* GW_STRING::reset_str(const char* s) {
    const std::size_t length = std::strlen(s);
    // Kept: a text of the same length gets a new buffer.
    if (std::strlen(str.get()) <= length) {
        str = duplicate(s);
    } else {
        std::memmove(str.get(), s, length + 1);
    }
    return str.get();
}

int GW_STRING::compare(const GW_STRING* other) const {
    return std::strcmp(get_str(), other->get_str());
}

int GW_STRING::equal(const GW_STRING* other) const {
    return compare(other) == 0 ? 1 : 0;
}

int GW_STRING::match(GW_REG_EXP* re) const {
    return re->string_match(get_str());
}

void GW_STRING::print(const char* prefix, GW_FILE* file) const {
    if (file == nullptr) return;
    std::string line = prefix != nullptr ? std::string(prefix) + ' ' : std::string();
    line += "len = " + std::to_string(get_len()) + ", str = " + get_str() + '\n';
    file->put_line(line.c_str());
}
