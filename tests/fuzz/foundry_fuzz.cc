// SPDX-License-Identifier: MIT
//
// Lines of the foundry table, and the foundry that a line of text names.
#include "fontfiles/gw_foundry_file.h"
#include "fuzz.h"

namespace {

/// Two fields without quotes, backslashes or blanks are read as they are, quoted or not.
void try_written(const std::string& name, const std::string& symbol) {
    constexpr std::string_view SPECIAL("'\\ \t\n\0", 6);
    const auto is_plain = [&](const std::string& text) {
        return !text.empty() && text.find_first_of(SPECIAL) == std::string::npos;
    };
    if (!is_plain(name) || !is_plain(symbol)) return;
    for (const std::string& line : {name + '\t' + symbol, '\'' + name + "'\t\t'" + symbol + "'\n"}) {
        std::string read_name;
        std::string read_symbol;
        GW_FOUNDRY_FILE::split_line(line.c_str(), read_name, read_symbol);
        GW_MUST_HOLD(read_name == name && read_symbol == symbol, line);
    }
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    const std::string line(before_nul(input));
    std::string name;
    std::string symbol;
    GW_FOUNDRY_FILE::split_line(line.c_str(), name, symbol);
    GW_MUST_HOLD(name.size() + symbol.size() <= line.size(), line);
    GW_MUST_HOLD((name + symbol).find_first_of("\\\n") == std::string::npos, line);
    try_written(name, symbol);

    const GW_FOUNDRY_FILE table;
    std::string found = "none";
    if (!table.get_foundry_symbol_from_line(found, line.c_str())) GW_MUST_HOLD(found == "none", line);
    if (found != "none") GW_MUST_HOLD(table.get_foundry_name(found.c_str()) != nullptr, line);
    const std::unique_ptr<GW_STRING> known = table.get_foundry_symbol(line.c_str());
    GW_MUST_HOLD(known == nullptr || table.get_foundry_name(known->get_str()) != nullptr, line);
}
