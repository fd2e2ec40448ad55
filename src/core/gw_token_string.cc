// SPDX-License-Identifier: MIT
#include "core/gw_token_string.h"

#include <cstring>

#include "core/gw_file.h"
#include "core/gw_token_table.h"

namespace {

const char* stored(std::string& dst, const char* token) {
    if (token != nullptr) dst = token;
    return token;
}

const char* with_id(int& id, const GW_TOKEN_TABLE* table, const char* token) {
    id = token != nullptr ? table->get_id(token) : table->get_default_id();
    return token;
}

}  // namespace

GW_TOKEN_STRING::GW_TOKEN_STRING(const char* s) : GW_STRING(s) {
    renew_work();
}

void GW_TOKEN_STRING::renew_work() {
    const std::size_t size = std::strlen(get_str()) + 1;
    work = std::make_unique<char[]>(size);
    std::memcpy(work.get(), get_str(), size);
}

const char* GW_TOKEN_STRING::get_first_token(const char* delims) {
    return std::strtok(work.get(), delims);
}

const char* GW_TOKEN_STRING::get_first_token(std::string& dst, const char* delims) {
    return stored(dst, get_first_token(delims));
}

const char* GW_TOKEN_STRING::get_next_token(const char* delims) {
    return std::strtok(nullptr, delims);
}

const char* GW_TOKEN_STRING::get_next_token(std::string& dst, const char* delims) {
    return stored(dst, get_next_token(delims));
}

const char* GW_TOKEN_STRING::get_first_token_id(int& id, const GW_TOKEN_TABLE* table, const char* delims) {
    return with_id(id, table, get_first_token(delims));
}

const char* GW_TOKEN_STRING::get_next_token_id(int& id, const GW_TOKEN_TABLE* table, const char* delims) {
    return with_id(id, table, get_next_token(delims));
}

const char* GW_TOKEN_STRING::reset_str(const char* s) {
    if (s != nullptr) GW_STRING::reset_str(s);
    renew_work();
    return get_str();
}

void GW_TOKEN_STRING::print(const char* prefix, GW_FILE* file) const {
    if (file == nullptr) return;
    const std::string lead = prefix != nullptr ? std::string(prefix) + ' ' : std::string();
    file->put_line((lead + "str = " + get_str() + ", tmp_str = " + work.get() + '\n').c_str());
}

int get_first_token_from_str(std::string& dst, const char* str, const char* delims) {
    GW_TOKEN_STRING(str).get_first_token(dst, delims);
    return 1;
}
