// SPDX-License-Identifier: MIT
#include "diagnosis/xlfd_fields.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "core/text.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr std::string_view OPEN = "*";

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool is_open(std::string_view field) {
    return field.find('*') != NONE;
}

bool is_one_of(std::string_view field, std::initializer_list<std::string_view> words) {
    const std::string plain = lower_case(field);
    return std::find(words.begin(), words.end(), plain) != words.end();
}

/// Whether a text has the form that this field has in names.
bool fits(Field field, std::string_view text) {
    switch (field) {
        case Field::WEIGHT:
            return is_one_of(text, {"medium", "bold", "light", "demibold", "demi bold", "demi", "regular",
                                    "black", "book", "thin", "semibold", "heavy", "ultralight", "extrabold"});
        case Field::SLANT:
            return is_one_of(text, {"r", "i", "o", "ri", "ro", "ot"});
        case Field::SETWIDTH:
            return is_one_of(text, {"normal", "semicondensed", "condensed", "narrow", "semi condensed",
                                    "expanded", "wide", "double wide"});
        case Field::PIXELS:
            return number_in(text).value_or(1000) < 60;
        case Field::POINTS:
            return number_in(text).value_or(0) >= 60;
        case Field::X_RESOLUTION:
        case Field::Y_RESOLUTION:
            return is_one_of(text, {"75", "100", "72", "96", "0"});
        case Field::SPACING:
            return is_one_of(text, {"p", "m", "c"});
        case Field::AVERAGE_WIDTH:
            return number_in(text).has_value();
        case Field::REGISTRY:
            return text.size() > 3 && text.find_first_of("0123456789") != NONE && !number_in(text);
        case Field::ENCODING:
            return is_one_of(text, {"fontspecific"}) || (number_in(text).has_value() && text.size() <= 2);
        case Field::STYLE:
            return text.empty() || is_one_of(text, {"sans", "serif", "ja", "ko"});
        case Field::FOUNDRY:
        case Field::FAMILY:
            return text.size() > 2 && !number_in(text);
    }
    return false;
}

/// Distributes the fields of a pattern over the 14: each asterisk may stand for several.
class Alignment {
  public:
    explicit Alignment(const std::vector<std::string_view>& parts) : _parts(parts) {}

    /// The most plausible one; the first of those that are equal.
    [[nodiscard]] XlfdFields best() {
        for (std::size_t part = _parts.size(); part-- > 0;)
            for (std::size_t field = XLFD_FIELDS; field-- > part;) decide(part, field);
        return fields();
    }

  private:
    static constexpr int IMPOSSIBLE = -1000000;

    [[nodiscard]] int value_behind(std::size_t part, std::size_t field) const {
        const bool is_end = part == _parts.size() || field == XLFD_FIELDS;
        if (!is_end) return _values[part][field];
        // What a pattern leaves out at its end stays open.
        return part == _parts.size() ? 0 : IMPOSSIBLE;
    }

    /// For how many fields `part` stands best when it begins at `field`.
    void decide(std::size_t part, std::size_t field) {
        const std::string_view text = _parts[part];
        const std::size_t most = is_open(text) ? XLFD_FIELDS - field : 1;
        _values[part][field] = IMPOSSIBLE;
        for (std::size_t count = 1; count <= most; ++count) {
            const bool ends_well = part + 1 < _parts.size() || field + count == XLFD_FIELDS || !is_open(text);
            const int own = is_open(text) ? 0 : (fits(static_cast<Field>(field), text) ? 2 : 0);
            const int value = (ends_well ? own : IMPOSSIBLE) + value_behind(part + 1, field + count);
            if (value <= _values[part][field]) continue;
            _values[part][field] = value;
            _counts[part][field] = count;
        }
    }

    [[nodiscard]] XlfdFields fields() const {
        XlfdFields fields;
        fields.fill(OPEN);
        std::size_t field = 0;
        for (std::size_t part = 0; part < _parts.size() && field < XLFD_FIELDS; ++part) {
            const std::size_t count = std::max<std::size_t>(_counts[part][field], 1);
            // "helv*-120": the text is in the first field or in the last one, the others are open.
            const bool is_last = _parts[part].starts_with('*');
            fields[is_last ? field + count - 1 : field] = _parts[part];
            field += count;
        }
        return fields;
    }

    const std::vector<std::string_view>& _parts;
    std::array<std::array<int, XLFD_FIELDS>, XLFD_FIELDS> _values = {};
    std::array<std::array<std::size_t, XLFD_FIELDS>, XLFD_FIELDS> _counts = {};
};

std::vector<std::string_view> parts_of(std::string_view pattern) {
    std::vector<std::string_view> parts;
    while (parts.size() < XLFD_FIELDS) {
        const std::size_t hyphen = pattern.find('-');
        parts.push_back(pattern.substr(0, hyphen));
        if (hyphen == NONE) break;
        pattern.remove_prefix(hyphen + 1);
    }
    return parts;
}

}  // namespace

bool XlfdFields::is_scalable() const {
    return (*this)[Field::PIXELS] == "0" && (*this)[Field::POINTS] == "0" &&
           (*this)[Field::AVERAGE_WIDTH] == "0";
}

std::optional<XlfdFields> fields_of(std::string_view name) {
    if (!name.starts_with('-')) return {};
    XlfdFields fields;
    std::size_t field = 0;
    for (std::size_t at = 1;; ++field) {
        const std::size_t hyphen = std::min(name.find('-', at), name.size());
        if (field == XLFD_FIELDS) return {};
        fields[field] = name.substr(at, hyphen - at);
        if (hyphen == name.size()) break;
        at = hyphen + 1;
    }
    if (field + 1 != XLFD_FIELDS) return {};
    return fields;
}

std::optional<XlfdFields> fields_of_pattern(std::string_view pattern) {
    const bool is_pattern =
        pattern.starts_with('-') || (pattern.starts_with('*') && pattern.find('-') != NONE);
    if (!is_pattern) return {};
    if (std::optional<XlfdFields> fields = fields_of(pattern)) return fields;
    if (pattern.starts_with('-')) pattern.remove_prefix(1);
    const std::vector<std::string_view> parts = parts_of(pattern);
    return Alignment(parts).best();
}

bool matches(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t i = 0;
    std::size_t star = NONE;  // the last asterisk, and the end of what it stands for so far
    std::size_t taken = 0;
    while (at < text.size()) {
        if (i < pattern.size() && pattern[i] == '*') {
            star = i++;
            taken = at;
        } else if (i < pattern.size() && (pattern[i] == '?' || lower(pattern[i]) == lower(text[at]))) {
            ++i;
            ++at;
        } else if (star != NONE) {
            i = star + 1;
            at = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', i) == NONE;
}

std::optional<int> number_in(std::string_view field) {
    int number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    if (error != std::errc() || end != field.data() + field.size() || field.empty()) return {};
    return number;
}

}  // namespace gw::diagnosis
