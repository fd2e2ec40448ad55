// SPDX-License-Identifier: MIT
#include "fontfiles/gw_foundry_file.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace {

// The first empty row ends the table. Kept: two names of foundries have the same symbol. They are "Linotype
// AG" and "Linotype".
constexpr std::array<const char*, GW_FOUNDRY_FILE::MAX_ROWS> FOUNDRY_ROWS = {
    "'Adobe'\t\t'adobe'",
    "'Linotype AG'\t'linotype'",
    "'Bitstream'\t\t'bitstream'",
    "'DEC'\t\t'dec'",
    "'daewoo'\t'daewoo'",
    "'ITC'\t\t'itc'",
    "'JIS'\t\t'jis'",
    "'Linotype'\t'linotype'",
    "'Monotype'\t'monotype'",
    "'Schumacher'\t'schumacher'",
    "'TAL'\t\t'tal'",
    "'URW'\t\t'urw'",
    "",
    "",
    "",
    "",
};

struct Row {
    std::string display_name;
    std::string symbol;
    explicit Row(const GW_STRING* line) {
        GW_FOUNDRY_FILE::split_line(line->get_str(), display_name, symbol);
    }
};

}  // namespace

std::string& remove_sp_char(std::string& text) {
    if (text.starts_with('\'')) {
        text.erase(0, 1);
        if (text.ends_with('\'')) text.pop_back();
    }
    std::erase(text, '\\');
    return text;
}

GW_FOUNDRY_FILE::GW_FOUNDRY_FILE() {
    for (const char* row : FOUNDRY_ROWS) {
        if (*row == '\0') break;
        rows.append(new GW_STRING(row));
    }
}

GW_FOUNDRY_FILE::~GW_FOUNDRY_FILE() {
    gw::delete_elements(rows);
}

void GW_FOUNDRY_FILE::split_line(const char* line, std::string& display_name, std::string& symbol) {
    std::string_view rest(line);
    rest = rest.substr(0, rest.find('\n'));
    std::size_t name_end = 0;
    if (rest.starts_with('\'')) {
        rest.remove_prefix(1);
        name_end = std::min(rest.find('\''), rest.size());
    } else {
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        name_end = std::min(rest.find_first_of(" \t"), rest.size());
    }
    display_name = rest.substr(0, name_end);
    rest.remove_prefix(std::min(name_end + 1, rest.size()));
    symbol = rest.substr(std::min(rest.find_first_not_of(" \t"), rest.size()));
    remove_sp_char(display_name);
    remove_sp_char(symbol);
}

int GW_FOUNDRY_FILE::get_foundry_name_list(GW_STRING_LIST& out) const {
    for (const GW_STRING* line : rows) out.append(new GW_STRING(Row(line).display_name.c_str()));
    return 1;
}

std::unique_ptr<GW_STRING> GW_FOUNDRY_FILE::get_foundry_symbol(const char* display_name) const {
    for (const GW_STRING* line : rows) {
        const Row row(line);
        if (row.display_name == display_name) return std::make_unique<GW_STRING>(row.symbol.c_str());
    }
    return nullptr;
}

std::unique_ptr<GW_STRING> GW_FOUNDRY_FILE::get_foundry_name(const char* symbol) const {
    for (const GW_STRING* line : rows) {
        const Row row(line);
        if (row.symbol == symbol) return std::make_unique<GW_STRING>(row.display_name.c_str());
    }
    return nullptr;
}

bool GW_FOUNDRY_FILE::get_foundry_symbol_from_line(std::string& symbol_out, const char* line) const {
    const std::string_view text(line);
    // The table is the same in every object, and thousands of fonts ask it.
    static const std::vector<Row> known(rows.begin(), rows.end());
    for (const Row& row : known) {
        // Kept: a foundry is recognised inside a longer word.
        if (text.find(row.display_name) == std::string_view::npos) continue;
        symbol_out = row.symbol;
        return true;
    }
    return false;
}
