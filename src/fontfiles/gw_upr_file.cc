// SPDX-License-Identifier: MIT
#include "fontfiles/gw_upr_file.h"

#include <array>
#include <string>

#include "core/gw_token_string.h"

namespace {

constexpr int MAX_SECTIONS = 12;
constexpr int MAX_SECTION_CHARS = 256;

constexpr std::array<const char*, GW_UPR_FILE::NO_SECTION> SECTIONS = {
    "FontOutline", "FontPrebuilt", "FontAFM",  "FontBDF", "FontFamily",
    "Form",        "Pattern",      "Encoding", "ProcSet", "mkpsresPrivate",
};

}  // namespace

GW_UPR_FILE::GW_UPR_FILE(const char* file_name, const char* file_dir, int type)
    : GW_FILE(file_name, file_dir, type), res_types(MAX_SECTIONS, MAX_SECTION_CHARS, NO_SECTION) {
    int id = 0;
    for (const char* section : SECTIONS) res_types.add_token(id++, section);
}

int GW_UPR_FILE::get_line_res_type(const char* line) const {
    std::string token;
    get_first_token_from_str(token, line, "\n");
    return res_types.get_id(token.c_str());
}

int GW_UPR_FILE::get_context(int res_type) const {
    return res_type;
}

int GW_UPR_FILE::put_res_data_line(int /*res_type*/, const char* /*data*/) {
    char line[LINE_BUFFER];
    while (get_line(line, sizeof line) != nullptr) {
        if (line[0] != '.') get_line_res_type(line);
    }
    return 1;
}
