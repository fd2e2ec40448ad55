// SPDX-License-Identifier: MIT
#include "diagnosis/name_difference.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <numeric>
#include <optional>

#include "core/text.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr std::size_t LONGEST = 64;  // names that are longer are no spelling mistakes

/// Families of one line look much the same, and have nearly the same widths.
constexpr auto DESIGNS = std::to_array<std::array<std::string_view, 8>>({
    {"helvetica", "nimbus sans", "nimbus sans l", "arial", "liberation sans", "swiss", "helvetica neue",
     "tex gyre heros"},
    {"times", "nimbus roman", "nimbus roman no9 l", "times new roman", "liberation serif", "dutch",
     "times roman", "tex gyre termes"},
    {"courier", "nimbus mono", "nimbus mono l", "nimbus mono ps", "courier new", "liberation mono",
     "courier 10 pitch", "tex gyre cursor"},
    {"palatino", "p052", "urw palladio l", "palatino linotype", "zapf calligraphic", "tex gyre pagella",
     "palladio", "book antiqua"},
    {"new century schoolbook", "c059", "century schoolbook l", "century schoolbook", "tex gyre schola", "",
     "", ""},
    {"itc bookman", "bookman", "urw bookman", "urw bookman l", "tex gyre bonum", "", "", ""},
    {"itc avant garde gothic", "avant garde", "urw gothic", "urw gothic l", "tex gyre adventor", "", "", ""},
    {"itc zapf chancery", "zapf chancery", "z003", "urw chancery l", "tex gyre chorus", "", "", ""},
    {"zapfdingbats", "itc zapf dingbats", "d050000l", "dingbats", "", "", "", ""},
    {"symbol", "standard symbols l", "standard symbols ps", "", "", "", "", ""},
    {"lucida", "lucida sans", "luxi sans", "", "", "", "", ""},
    {"lucidatypewriter", "lucida typewriter", "lucida sans typewriter", "luxi mono", "", "", "", ""},
    {"utopia", "utopia std", "charter", "bitstream charter", "", "", "", ""},
    {"bitstream vera sans", "dejavu sans", "verdana", "", "", "", "", ""},
    {"bitstream vera sans mono", "dejavu sans mono", "", "", "", "", "", ""},
    {"gothic", "vl gothic", "mincho", "fixed", "", "", "", ""},
});

bool has(const std::array<std::string_view, 8>& design, std::string_view family) {
    return std::find(design.begin(), design.end(), family) != design.end();
}

bool is_same_design(const std::string& family, const std::string& other) {
    return std::any_of(DESIGNS.begin(), DESIGNS.end(),
                       [&](const auto& design) { return has(design, family) && has(design, other); });
}

std::string without_gaps(std::string text) {
    std::erase(text, ' ');
    return text;
}

std::string words(std::string_view field) {
    return std::string(field);
}

/// Decipoints as points: "12", "12.5".
std::string points(std::string_view field) {
    const std::optional<int> number = number_in(field);
    if (!number || *number < 0) return words(field);
    const int rest = *number % 10;
    return std::to_string(*number / 10) + (rest == 0 ? "" : "." + std::to_string(rest));
}

std::string resolution(const XlfdFields& fields) {
    const std::string_view x = fields[Field::X_RESOLUTION];
    const std::string_view y = fields[Field::Y_RESOLUTION];
    if (x == y || y == "*") return words(x);
    return x == "*" ? words(y) : words(x) + " x " + words(y);
}

/// Collects the differences between a font and a pattern.
class Differences {
  public:
    Differences(const XlfdFields& font, const XlfdFields& wanted) : _font(font), _wanted(wanted) {}

    std::vector<Sentence> found() {
        family();
        charset();
        weight_and_slant();
        if (!_font.is_scalable()) sizes();
        plain(Field::SETWIDTH, Said::NEAR_SETWIDTH);
        style();
        spacing();
        plain(Field::FOUNDRY, Said::NEAR_FOUNDRY);
        // Another face or size has another width; that needs no words.
        if (_found.empty() && !_font.is_scalable() && size_differs(Field::AVERAGE_WIDTH))
            plain(Field::AVERAGE_WIDTH, Said::NEAR_AVERAGE_WIDTH);
        return _found;
    }

  private:
    [[nodiscard]] bool differs(Field field) const { return !matches(_font[field], _wanted[field]); }
    /// The same for a size, which a 0 leaves open.
    [[nodiscard]] bool size_differs(Field field) const { return _wanted[field] != "0" && differs(field); }
    void add(Said said, std::vector<std::string> details) { _found.push_back({said, std::move(details)}); }
    void plain(Field field, Said said) {
        if (differs(field)) add(said, {words(_font[field]), words(_wanted[field])});
    }

    void family() {
        if (!differs(Field::FAMILY)) return;
        const std::string_view font = _font[Field::FAMILY];
        const std::string_view wanted = _wanted[Field::FAMILY];
        const Likeness like = likeness(font, wanted);
        const Said said = like == Likeness::SPELLING ? Said::NEAR_SPELLING
                          : like == Likeness::DESIGN ? Said::NEAR_DESIGN
                                                     : Said::NEAR_FAMILY;
        add(said, {words(font), words(wanted)});
    }

    void charset() {
        if (!differs(Field::REGISTRY) && !differs(Field::ENCODING)) return;
        add(Said::NEAR_CHARSET, {words(_font[Field::REGISTRY]) + "-" + words(_font[Field::ENCODING]),
                                 words(_wanted[Field::REGISTRY]) + "-" + words(_wanted[Field::ENCODING])});
    }

    void weight_and_slant() {
        if (differs(Field::WEIGHT) && matches("bold", _wanted[Field::WEIGHT]))
            add(Said::NEAR_NOT_BOLD, {words(_font[Field::WEIGHT])});
        else
            plain(Field::WEIGHT, Said::NEAR_WEIGHT);
        if (!differs(Field::SLANT)) return;
        const bool is_upright = matches("r", _font[Field::SLANT]);
        const bool wants_upright = matches("r", _wanted[Field::SLANT]);
        if (is_upright != wants_upright)
            add(is_upright ? Said::NEAR_UPRIGHT : Said::NEAR_SLANTED, {});
        else
            plain(Field::SLANT, Said::NEAR_SLANT);
    }

    void sizes() {
        const bool resolution_differs =
            size_differs(Field::X_RESOLUTION) || size_differs(Field::Y_RESOLUTION);
        const bool asks_points = number_in(_wanted[Field::POINTS]).value_or(0) > 0;
        if (resolution_differs && asks_points) {
            add(Said::NEAR_POINTS_AT, {points(_wanted[Field::POINTS]), resolution(_wanted),
                                       points(_font[Field::POINTS]), resolution(_font)});
            return;
        }
        if (size_differs(Field::PIXELS))
            add(Said::NEAR_PIXELS, {words(_font[Field::PIXELS]), words(_wanted[Field::PIXELS])});
        if (size_differs(Field::POINTS))
            add(Said::NEAR_POINTS, {points(_font[Field::POINTS]), points(_wanted[Field::POINTS])});
        if (resolution_differs) add(Said::NEAR_RESOLUTION, {resolution(_font), resolution(_wanted)});
    }

    void style() {
        if (!differs(Field::STYLE)) return;
        if (_font[Field::STYLE].empty())
            add(Said::NEAR_NO_STYLE, {words(_wanted[Field::STYLE])});
        else if (_wanted[Field::STYLE].empty())
            add(Said::NEAR_MORE_STYLE, {words(_font[Field::STYLE])});
        else
            plain(Field::STYLE, Said::NEAR_STYLE);
    }

    void spacing() {
        if (!differs(Field::SPACING)) return;
        const bool is_proportional = matches("p", _font[Field::SPACING]);
        const bool wants_proportional = matches("p", _wanted[Field::SPACING]);
        if (is_proportional != wants_proportional)
            add(is_proportional ? Said::NEAR_PROPORTIONAL : Said::NEAR_FIXED_WIDTH, {});
        else
            plain(Field::SPACING, Said::NEAR_SPACING);
    }

    const XlfdFields& _font;
    const XlfdFields& _wanted;
    std::vector<Sentence> _found;
};

/// The parts of an alias that are about a face: "bold", "italic", "12".
struct AliasParts {
    std::string family;
    std::string weight = "*";
    std::string slant = "*";
    int points = 0;
};

AliasParts parts_of_alias(const std::string& name) {
    AliasParts parts;
    std::size_t at = 0;
    while (at <= name.size()) {
        const std::size_t hyphen = std::min(name.find('-', at), name.size());
        const std::string word = name.substr(at, hyphen - at);
        const bool is_last = hyphen == name.size();
        at = hyphen + 1;
        if (word.find("bold") != NONE) parts.weight = "bold";
        if (word.find("oblique") != NONE || word == "o") parts.slant = "o";
        if (word.find("italic") != NONE || word == "i") parts.slant = "i";
        const bool is_face = parts.weight == word || word == "bolditalic" || word == "boldoblique" ||
                             word == "oblique" || word == "italic" || word == "medium" || word == "o" ||
                             word == "i";
        const std::optional<int> number = number_in(word);
        if (number && is_last && *number > 3 && *number < 200)
            parts.points = *number;
        else if (!is_face && !word.empty())
            parts.family.append(parts.family.empty() ? "" : " ").append(word);
    }
    return parts;
}

/// "9x15" is a cell of 9 by 15 pixels.
std::string meant_by_cell(const std::string& name) {
    const std::size_t cross = name.find('x');
    if (cross == NONE) return "";
    const std::size_t behind = name.find_first_not_of("0123456789", cross + 1);
    const std::optional<int> width = number_in(name.substr(0, cross));
    const std::optional<int> height =
        number_in(name.substr(cross + 1, behind == NONE ? NONE : behind - cross - 1));
    if (!width || !height || *width < 2 || *width > 200 || *height < 2 || *height > 200) return "";
    const bool is_bold = name.ends_with("bold") || name.ends_with('b');
    return "-misc-fixed-" + std::string(is_bold ? "bold" : "medium") + "-r-*-*-" + std::to_string(*height) +
           "-*-*-*-c-" + std::to_string(*width * 10) + "-*-*";
}

}  // namespace

int spelling_difference(std::string_view name, std::string_view other) {
    if (name.size() > LONGEST || other.size() > LONGEST)
        return matches(name, other) ? 0 : static_cast<int>(std::max(name.size(), other.size()));
    const std::string a = lower_case(name);
    const std::string b = lower_case(other);
    std::array<std::array<int, LONGEST + 1>, 3> rows = {};  // three rows of the table of distances, in turns
    std::iota(rows[0].begin(), rows[0].end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        auto& row = rows[i % 3];
        const auto& last = rows[(i + 2) % 3];
        const auto& last_but_one = rows[(i + 1) % 3];
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int change = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({change, last[j] + 1, row[j - 1] + 1});
            const bool is_exchange = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (is_exchange) row[j] = std::min(row[j], last_but_one[j - 2] + 1);
        }
    }
    return rows[a.size() % 3][b.size()];
}

Likeness likeness(std::string_view name, std::string_view other) {
    if (name.empty() || other.empty() || other.find('*') != NONE) return Likeness::NONE;
    const std::string plain = lower_case(name);
    const std::string other_plain = lower_case(other);
    if (is_same_design(plain, other_plain)) return Likeness::DESIGN;
    const int most = static_cast<int>(std::max<std::size_t>(1, std::min(name.size(), other.size()) / 4));
    const bool is_long = std::min(name.size(), other.size()) >= 3;
    if (is_long && std::abs(static_cast<int>(name.size()) - static_cast<int>(other.size())) <= most &&
        spelling_difference(name, other) <= most)
        return Likeness::SPELLING;
    const std::string joined = without_gaps(plain);
    const std::string other_joined = without_gaps(other_plain);
    if (joined == other_joined) return Likeness::SPELLING;
    return is_long && (joined.starts_with(other_joined) || other_joined.starts_with(joined)) ? Likeness::PART
                                                                                             : Likeness::NONE;
}

std::vector<Sentence> differences(const XlfdFields& font, const XlfdFields& wanted) {
    return Differences(font, wanted).found();
}

std::string meant_by_alias(std::string_view name) {
    const std::string plain = lower_case(name.substr(0, LONGEST));
    if (std::string cell = meant_by_cell(plain); !cell.empty()) return cell;
    const AliasParts parts = parts_of_alias(plain);
    if (parts.family.empty() || parts.family.find('*') != NONE) return "";
    const std::string size = parts.points == 0 ? "*" : std::to_string(parts.points * 10);
    const std::string slant = parts.slant == "*" ? "r" : parts.slant;
    const std::string weight = parts.weight == "*" ? "medium" : parts.weight;
    return "-*-" + parts.family + "-" + weight + "-" + slant + "-*-*-*-" + size + "-*-*-*-*-*-*";
}

}  // namespace gw::diagnosis
