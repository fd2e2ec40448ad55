// SPDX-License-Identifier: MIT
#include "diagnosis/alias_name.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <vector>

#include "core/text.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t FIELDS = 14;  // of an XLFD name
enum Field : std::size_t {
    SLANT = 3,
    PIXELS = 6,
    POINTS = 7,
    DPI_X = 8,
    DPI_Y = 9,
    SPACING = 10,
    WIDTH = 11
};

constexpr std::size_t LONGEST_NAME = 255;
constexpr std::string_view FILE_NAMES_KEYWORD = "FILE_NAMES_ALIASES";  // of alias files
constexpr std::string_view WILDCARDS = "*?";

using Names = std::array<std::string, FIELDS>;

bool is_pattern(std::string_view name) {
    return name.find_first_of(WILDCARDS) != std::string_view::npos;
}

std::vector<std::string> split_at_dashes(std::string_view text) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('-', start), text.size());
        parts.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::optional<Names> fields_of(std::string_view name) {
    if (!name.starts_with('-')) return std::nullopt;
    std::vector<std::string> parts = split_at_dashes(name.substr(1));
    if (parts.size() != FIELDS) return std::nullopt;
    Names names;
    std::move(parts.begin(), parts.end(), names.begin());
    return names;
}

std::string joined(const Names& names) {
    std::string name;
    for (const std::string& field : names) name += '-' + field;
    return name;
}

bool is_number(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Whether the field of an XLFD name can have the value. Sizes in decipoints are larger than those in pixels.
bool is_plausible(std::size_t field, const std::string& value) {
    static constexpr int LEAST_DECIPOINTS = 50;
    const bool is_numeric = is_number(value);
    const int number = is_numeric ? std::atoi(value.c_str()) : 0;
    switch (field) {
        case PIXELS:
            return is_numeric && number < LEAST_DECIPOINTS;
        case POINTS:
        case DPI_X:
        case DPI_Y:
            return is_numeric && (number >= LEAST_DECIPOINTS || number == 0);
        case WIDTH:
            return is_numeric || value.starts_with('~');
        case SPACING:
            return value.size() == 1 && std::string_view("pmcPMC").find(value) != std::string_view::npos;
        case SLANT: {
            const std::string slant = lower_case(value);
            return slant == "r" || slant == "i" || slant == "o" || slant == "ri" || slant == "ro" ||
                   slant == "ot";
        }
        default:
            return !is_numeric || field == FIELDS - 1;
    }
}

/// Which part of a pattern stands for which field of a name: the cheapest of all ways to lay it over the
/// font's fields. A part "*" stands for one or more of them.
class Overlay {
  public:
    Overlay(const std::vector<std::string>& parts, const Names& font) : parts_(parts), font_(font) {
        costs_.assign((parts.size() + 1) * (FIELDS + 1), UNKNOWN);
    }

    /// For each field the part, or "*".
    std::optional<Names> best() {
        if (parts_.size() > FIELDS || cost(0, 0) >= IMPOSSIBLE) return std::nullopt;
        Names names;
        std::size_t part = 0;
        for (std::size_t field = 0; field < FIELDS; ++field) {
            names[field] = parts_[part];
            const bool goes_on = parts_[part] == "*" && cost(part, field + 1) < cost(part + 1, field + 1);
            if (!goes_on) ++part;
        }
        return names;
    }

  private:
    static constexpr int UNKNOWN = -1;
    static constexpr int IMPOSSIBLE = 1000000;
    static constexpr int ANOTHER_VALUE = 1;
    static constexpr int STRANGE_VALUE = 100;

    int& known_cost(std::size_t part, std::size_t field) { return costs_[part * (FIELDS + 1) + field]; }

    /// Of the parts from this one on, laid over the fields from this one on.
    int cost(std::size_t part, std::size_t field) {
        if (part == parts_.size() || field == FIELDS)
            return part == parts_.size() && field == FIELDS ? 0 : IMPOSSIBLE;
        int& known = known_cost(part, field);
        if (known != UNKNOWN) return known;
        const int one = cost(part + 1, field + 1);
        known = std::min(IMPOSSIBLE, parts_[part] == "*" ? std::min(one, cost(part, field + 1))
                                                         : one + cost_of_value(part, field));
        return known;
    }

    [[nodiscard]] int cost_of_value(std::size_t part, std::size_t field) const {
        const std::string& value = parts_[part];
        if (server_matches(value, font_[field])) return 0;
        if (is_pattern(value)) return ANOTHER_VALUE;
        return is_plausible(field, value) ? ANOTHER_VALUE : STRANGE_VALUE;
    }

    const std::vector<std::string>& parts_;
    const Names& font_;
    std::vector<int> costs_;
};

/// The text without its wildcards.
std::string without_wildcards(std::string_view pattern) {
    std::string text;
    for (const char c : pattern) {
        if (c != '*') text += c == '?' ? 'x' : c;
    }
    return text;
}

bool has_no_size(const Names& font) {
    return font[PIXELS] == "0" && font[POINTS] == "0" && font[WIDTH] == "0";
}

/// An outline font in the size that the pattern names.
Names sized(Names font, const Names& wanted) {
    static constexpr const char* USUAL_POINTS = "120";
    if (!has_no_size(font)) return font;
    for (const std::size_t field : {PIXELS, POINTS, DPI_X, DPI_Y}) {
        if (is_number(wanted[field])) font[field] = wanted[field];
    }
    if (font[PIXELS] == "0" && font[POINTS] == "0") font[POINTS] = USUAL_POINTS;
    return font;
}

/// The pattern as parts; "*-x" begins with any fields.
std::optional<std::vector<std::string>> parts_of(std::string_view pattern) {
    if (pattern.starts_with("*-")) return split_at_dashes(pattern);
    if (pattern.starts_with('-')) return split_at_dashes(pattern.substr(1));
    return std::nullopt;
}

std::optional<AliasName> name_for_fields(std::string_view wanted, const Names& font) {
    const auto parts = parts_of(wanted);
    if (!parts) return std::nullopt;
    const std::optional<Names> laid = Overlay(*parts, font).best();
    if (!laid) return std::nullopt;
    const Names target = sized(font, *laid);
    Names name = *laid;
    for (std::size_t field = 0; field < FIELDS; ++field) {
        if (!is_pattern(name[field])) continue;
        name[field] =
            server_matches(name[field], target[field]) ? target[field] : without_wildcards(name[field]);
    }
    return AliasName{joined(name), joined(target)};
}

bool can_be_alias(std::string_view name) {
    const bool is_printable = std::all_of(name.begin(), name.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= ' ' && byte != '\x7F';
    });
    // With a subset of characters ("[65_90]") behind it the server looks for no alias.
    return is_printable && !name.empty() && name.size() <= LONGEST_NAME &&
           name.find('[') == std::string::npos && name.find_first_not_of(' ') != std::string::npos &&
           lower_case(name) != lower_case(FILE_NAMES_KEYWORD);
}

}  // namespace

bool server_matches(std::string_view pattern, std::string_view name) {
    const std::string expected = lower_case(pattern);
    const std::string given = lower_case(name);
    std::size_t at = 0;
    std::size_t star = std::string::npos;
    std::size_t behind_star = 0;
    for (std::size_t i = 0; i < given.size();) {
        if (at < expected.size() && expected[at] == '*') {
            star = at++;
            behind_star = i;
        } else if (at < expected.size() && (expected[at] == '?' || expected[at] == given[i])) {
            ++at;
            ++i;
        } else if (star != std::string::npos) {
            at = star + 1;
            i = ++behind_star;
        } else {
            return false;
        }
    }
    return expected.find_first_not_of('*', at) == std::string::npos;
}

std::optional<AliasName> alias_name(std::string_view wanted, std::string_view font) {
    if (!can_be_alias(wanted) || !can_be_alias(font) || is_pattern(font)) return std::nullopt;
    const std::optional<Names> fields = fields_of(font);
    std::optional<AliasName> alias;
    if (fields) alias = name_for_fields(wanted, *fields);
    // Also a name that is none of X's may be asked for.
    if (!alias || !server_matches(wanted, alias->name))
        alias = AliasName{without_wildcards(wanted), fields ? joined(sized(*fields, {})) : std::string(font)};
    const bool is_itself = lower_case(alias->name) == lower_case(alias->font);
    if (is_itself || !can_be_alias(alias->name) || !server_matches(wanted, alias->name)) return std::nullopt;
    return alias;
}

}  // namespace gw::diagnosis
