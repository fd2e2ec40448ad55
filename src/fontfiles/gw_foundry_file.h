// SPDX-License-Identifier: MIT
//
// The built-in table of foundries: the symbol that an XLFD name carries ("adobe") and the name that a person
// reads ("Adobe"). The rows are kept as text lines and split when they are asked for.
#pragma once

#include <memory>
#include <string>

#include "core/gw_string_list.h"

/// Cleans a field in place: drops an opening single quote together with the closing one, and every backslash.
/// Returns the field.
std::string& remove_sp_char(std::string& text);

class GW_FOUNDRY_FILE {
  public:
    static constexpr int MAX_ROWS = 16;

    GW_FOUNDRY_FILE();
    ~GW_FOUNDRY_FILE();
    GW_FOUNDRY_FILE(const GW_FOUNDRY_FILE&) = delete;
    GW_FOUNDRY_FILE& operator=(const GW_FOUNDRY_FILE&) = delete;

    /// Splits a stored line, quoted ('Linotype AG' TAB 'linotype') or not, into its two fields.
    static void split_line(const char* line, std::string& display_name, std::string& symbol);

    /// Appends the display name of every row, in table order; the strings belong to `out`'s owner. Returns 1.
    int get_foundry_name_list(GW_STRING_LIST& out) const;
    /// The symbol of the first row with that display name (the display name of the first row with that
    /// symbol), case-sensitive, or null.
    std::unique_ptr<GW_STRING> get_foundry_symbol(const char* display_name) const;
    std::unique_ptr<GW_STRING> get_foundry_name(const char* symbol) const;
    /// Finds the first row whose display name occurs anywhere in `line` and stores its symbol. False, and
    /// `symbol_out` left alone, when none does.
    bool get_foundry_symbol_from_line(std::string& symbol_out, const char* line) const;

  private:
    GW_STRING_LIST rows;  // owned
};
