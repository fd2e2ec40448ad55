// SPDX-License-Identifier: MIT
//
// Each field that does not match has its price; the fonts with the lowest sums are the nearest. What a family
// costs is found out once for each family, because the spelling of names is expensive to compare.
#include "diagnosis/nearest.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "core/text.h"
#include "diagnosis/name_difference.h"
#include "diagnosis/xlfd_fields.h"

namespace gw::diagnosis {

namespace {

constexpr int OTHER_SLANT = 16;
constexpr int OTHER_KIND_OF_SLANT = 4;  // italic and oblique
constexpr int WEIGHT_STEP = 6;
constexpr int UNKNOWN_WEIGHT = 12;
constexpr int OTHER_SETWIDTH = 10;
constexpr int OTHER_STYLE = 6;
constexpr int OTHER_RESOLUTION = 5;
constexpr int OTHER_SPACING = 9;
constexpr int OTHER_CELLS = 1;  // "m" and "c" both have one width
constexpr int OTHER_AVERAGE_WIDTH = 3;
constexpr int OTHER_CHARSET = 40;
constexpr int OTHER_ENCODING = 25;  // of the same registry
constexpr int UNICODE_INSTEAD = 12;
constexpr int OTHER_FAMILY = 60;
constexpr int OTHER_FOUNDRY = 10;
constexpr int SIMILAR_FAMILY = 20;
constexpr int OTHER_SIZE = 6;
constexpr int MOST_FOR_SIZE = 30;
constexpr int MADE_TO_SIZE = 1;  // a bitmap of the right size is nearer than an outline
constexpr int OPEN_WEIGHT = 2;   // of those that nobody has asked for, the plain ones are nearer

bool is_equal(std::string_view field, std::string_view wanted) {
    return matches(field, wanted);
}

bool is_open(std::string_view wanted) {
    return wanted == "*" || wanted == "0";
}

int weight_rank(std::string_view weight) {
    constexpr auto RANKS = std::to_array<std::pair<std::string_view, int>>({{"thin", 0},
                                                                            {"ultralight", 0},
                                                                            {"extralight", 0},
                                                                            {"light", 1},
                                                                            {"book", 2},
                                                                            {"regular", 2},
                                                                            {"medium", 2},
                                                                            {"normal", 2},
                                                                            {"demi", 3},
                                                                            {"demibold", 3},
                                                                            {"demi bold", 3},
                                                                            {"semibold", 3},
                                                                            {"bold", 4},
                                                                            {"extrabold", 5},
                                                                            {"heavy", 5},
                                                                            {"black", 5}});
    for (const auto& [name, rank] : RANKS)
        if (matches(weight, name)) return rank;
    return -1;
}

int weight_price(std::string_view weight, std::string_view wanted) {
    if (is_equal(weight, wanted)) return wanted == "*" && weight_rank(weight) != 2 ? OPEN_WEIGHT : 0;
    const int rank = weight_rank(weight);
    const int wanted_rank = weight_rank(wanted);
    if (rank < 0 || wanted_rank < 0) return UNKNOWN_WEIGHT;
    return std::max(1, WEIGHT_STEP * std::abs(rank - wanted_rank));
}

int slant_price(std::string_view slant, std::string_view wanted) {
    if (is_equal(slant, wanted)) return wanted == "*" && !matches(slant, "r") ? OPEN_WEIGHT : 0;
    const auto is_upright = [](std::string_view text) { return matches(text, "r"); };
    return is_upright(slant) == is_upright(wanted) ? OTHER_KIND_OF_SLANT : OTHER_SLANT;
}

int size_price(std::string_view size, std::string_view wanted) {
    if (is_open(wanted) || is_equal(size, wanted)) return 0;
    const std::optional<int> number = number_in(size);
    const std::optional<int> asked = number_in(wanted);
    if (!number || !asked || *asked <= 0 || *number < 0) return OTHER_SIZE;
    const long difference = std::labs(static_cast<long>(*number) - *asked);
    return static_cast<int>(std::min<long>(OTHER_SIZE + 30 * difference / *asked, MOST_FOR_SIZE));
}

int spacing_price(std::string_view spacing, std::string_view wanted) {
    if (is_equal(spacing, wanted)) return 0;
    const auto is_fixed = [](std::string_view text) { return matches(text, "m") || matches(text, "c"); };
    return is_fixed(spacing) && is_fixed(wanted) ? OTHER_CELLS : OTHER_SPACING;
}

int charset_price(const XlfdFields& font, const XlfdFields& wanted) {
    const bool has_registry = is_equal(font[Field::REGISTRY], wanted[Field::REGISTRY]);
    if (has_registry && is_equal(font[Field::ENCODING], wanted[Field::ENCODING])) return 0;
    if (matches(font[Field::REGISTRY], "iso10646")) return UNICODE_INSTEAD;
    return has_registry ? OTHER_ENCODING : OTHER_CHARSET;
}

int sizes_price(const XlfdFields& font, const XlfdFields& wanted) {
    if (font.is_scalable()) return MADE_TO_SIZE;
    const bool is_resolution = (is_open(wanted[Field::X_RESOLUTION]) ||
                                is_equal(font[Field::X_RESOLUTION], wanted[Field::X_RESOLUTION])) &&
                               (is_open(wanted[Field::Y_RESOLUTION]) ||
                                is_equal(font[Field::Y_RESOLUTION], wanted[Field::Y_RESOLUTION]));
    const bool is_width = is_open(wanted[Field::AVERAGE_WIDTH]) ||
                          is_equal(font[Field::AVERAGE_WIDTH], wanted[Field::AVERAGE_WIDTH]);
    return std::max(size_price(font[Field::PIXELS], wanted[Field::PIXELS]),
                    size_price(font[Field::POINTS], wanted[Field::POINTS])) +
           (is_resolution ? 0 : OTHER_RESOLUTION) + (is_width ? 0 : OTHER_AVERAGE_WIDTH);
}

/// Compares fonts with one pattern.
class Pricing {
  public:
    explicit Pricing(const XlfdFields& wanted) : _wanted(wanted) {}

    int price(const XlfdFields& font) {
        int price = name_price(font[Field::FAMILY], _wanted[Field::FAMILY], _families) +
                    name_price(font[Field::FOUNDRY], _wanted[Field::FOUNDRY], _foundries);
        price += weight_price(font[Field::WEIGHT], _wanted[Field::WEIGHT]);
        price += slant_price(font[Field::SLANT], _wanted[Field::SLANT]);
        price += is_equal(font[Field::SETWIDTH], _wanted[Field::SETWIDTH]) ? 0 : OTHER_SETWIDTH;
        price += is_equal(font[Field::STYLE], _wanted[Field::STYLE]) ? 0 : OTHER_STYLE;
        price += sizes_price(font, _wanted);
        price += spacing_price(font[Field::SPACING], _wanted[Field::SPACING]);
        return price + charset_price(font, _wanted);
    }

  private:
    using Prices = std::unordered_map<std::string_view, int>;

    int name_price(std::string_view name, std::string_view wanted, Prices& prices) const {
        const auto [entry, is_new] = prices.try_emplace(name, 0);
        if (is_new)
            entry->second = &prices == &_families ? family_price(name, wanted) : foundry_price(name, wanted);
        return entry->second;
    }

    static int family_price(std::string_view family, std::string_view wanted) {
        if (is_equal(family, wanted)) return 0;
        switch (likeness(family, wanted)) {
            case Likeness::SPELLING:
                return 6 + 4 * spelling_difference(family, wanted);
            case Likeness::DESIGN:
                return SIMILAR_FAMILY;
            case Likeness::PART:
                return SIMILAR_FAMILY + 5;
            case Likeness::NONE:
                break;
        }
        return OTHER_FAMILY;
    }

    static int foundry_price(std::string_view foundry, std::string_view wanted) {
        if (is_equal(foundry, wanted)) return 0;
        return likeness(foundry, wanted) == Likeness::SPELLING ? 3 : OTHER_FOUNDRY;
    }

    const XlfdFields& _wanted;
    Prices _families;
    Prices _foundries;
};

struct Priced {
    int price;
    std::size_t place;
};

std::string charset_of(const XlfdFields& font) {
    return lower_case(font[Field::REGISTRY]) + '-' + lower_case(font[Field::ENCODING]);
}

/// What makes two fonts the same face, in whatever sizes and charsets.
std::string face_of(const XlfdFields& font) {
    std::string face;
    for (const Field field : {Field::FOUNDRY, Field::FAMILY, Field::WEIGHT, Field::SLANT, Field::SETWIDTH,
                              Field::STYLE, Field::SPACING})
        face.append(lower_case(font[field])).append("-");
    return face;
}

/// Whether a size in pixels and one in points are the same at the resolution that is asked for. A server
/// makes no outline that is more than a pixel off.
bool is_one_size(const XlfdFields& wanted) {
    constexpr int DECIPOINTS_OF_AN_INCH = 723;
    const int pixels = number_in(wanted[Field::PIXELS]).value_or(0);
    const int points = number_in(wanted[Field::POINTS]).value_or(0);
    const int dpi = number_in(wanted[Field::Y_RESOLUTION]).value_or(0);
    if (pixels <= 0 || points <= 0 || dpi <= 0) return true;
    const long made = static_cast<long>(points) * dpi / DECIPOINTS_OF_AN_INCH;
    return std::labs(made - pixels) <= 1;
}

/// The name under which a program gets an outline in the sizes that were asked for.
std::string in_sizes(const XlfdFields& font, const XlfdFields& wanted) {
    const bool has_points = is_one_size(wanted);
    std::string name;
    for (std::size_t i = 0; i < XLFD_FIELDS; ++i) {
        const auto field = static_cast<Field>(i);
        const bool is_size = field == Field::PIXELS || (field == Field::POINTS && has_points) ||
                             field == Field::X_RESOLUTION || field == Field::Y_RESOLUTION;
        const bool is_asked = is_size && number_in(wanted[field]).value_or(0) > 0;
        name.append("-").append(is_asked ? wanted[field] : font[field]);
    }
    return name;
}

/// The candidates in order: the nearest first, then those that are served.
void sort(std::vector<Priced>& priced, const std::vector<Candidate>& candidates) {
    std::sort(priced.begin(), priced.end(), [&](const Priced& a, const Priced& b) {
        if (a.price != b.price) return a.price < b.price;
        const bool is_served = candidates[a.place].is_served;
        if (is_served != candidates[b.place].is_served) return is_served;
        return a.place < b.place;
    });
}

NearFont near_font(const Candidate& candidate) {
    return {candidate.name, candidate.file, candidate.element, candidate.is_served, {}, 0};
}

/// The faces that are listed.
class ListedFaces {
  public:
    explicit ListedFaces(const XlfdFields& wanted) : _has_charset(wanted[Field::REGISTRY] != "*") {}

    /// Whether the candidate is the first one of its face. Charsets count only if one was asked for, and only
    /// where they have files of their own. `place` is its place in the list.
    bool insert(const Candidate& candidate, const XlfdFields& fields, std::size_t place) {
        const std::string face = face_of(fields);
        if (!_names.insert(_has_charset ? face + charset_of(fields) : face).second) return false;
        if (candidate.file.empty() || !fields.is_scalable()) return true;
        _files.insert(candidate.file);
        return _outlines.try_emplace(face + candidate.file, Outline{place, {}}).second;
    }
    /// Says of each font how many other charsets it has among the candidates.
    void count_charsets(const std::vector<Candidate>& candidates, std::vector<NearFont>& fonts) {
        for (const Candidate& candidate : candidates) {
            if (!_files.contains(candidate.file)) continue;
            const std::optional<XlfdFields> fields = fields_of(candidate.name);
            if (!fields || !fields->is_scalable()) continue;
            const auto outline = _outlines.find(face_of(*fields) + candidate.file);
            if (outline != _outlines.end()) outline->second.charsets.insert(charset_of(*fields));
        }
        for (const auto& [face, outline] : _outlines)
            fonts[outline.place].other_charsets = outline.charsets.size() - 1;
    }

  private:
    struct Outline {
        std::size_t place = 0;
        std::set<std::string> charsets;
    };
    bool _has_charset;
    std::set<std::string> _names;
    std::set<std::string> _files;
    std::map<std::string, Outline> _outlines;
};

std::vector<NearFont> nearest_names(const XlfdFields& wanted, const std::vector<Candidate>& candidates,
                                    std::size_t most, int highest = OTHER_FAMILY * 4) {
    Pricing pricing(wanted);
    std::vector<Priced> priced;
    priced.reserve(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (const std::optional<XlfdFields> fields = fields_of(candidates[i].name))
            priced.push_back({pricing.price(*fields), i});
    sort(priced, candidates);
    std::vector<NearFont> nearest;
    ListedFaces faces(wanted);
    for (const Priced& next : priced) {
        if (nearest.size() >= most || next.price > highest) break;
        const Candidate& candidate = candidates[next.place];
        const XlfdFields fields = fields_of(candidate.name).value_or(XlfdFields());
        if (!faces.insert(candidate, fields, nearest.size())) continue;
        NearFont font = near_font(candidate);
        font.differences = differences(fields, wanted);
        if (fields.is_scalable()) font.name = in_sizes(fields, wanted);
        nearest.push_back(std::move(font));
    }
    faces.count_charsets(candidates, nearest);
    return nearest;
}

/// Aliases whose names are spelled much like the wanted one.
std::vector<NearFont> nearest_aliases(const std::string& wanted, const std::vector<Candidate>& candidates,
                                      std::size_t most) {
    const int farthest = std::max(1, static_cast<int>(wanted.size()) / 3);
    std::vector<Priced> priced;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const std::string& name = candidates[i].name;
        const auto length = static_cast<int>(name.size());
        const bool is_alias = !name.starts_with('-') || !fields_of(name);
        if (!is_alias || std::abs(length - static_cast<int>(wanted.size())) > farthest) continue;
        const int difference = spelling_difference(name, wanted);
        if (difference <= farthest) priced.push_back({difference, i});
    }
    sort(priced, candidates);
    std::vector<NearFont> nearest;
    std::set<std::string> names;
    for (const Priced& next : priced) {
        if (nearest.size() >= most) break;
        const Candidate& candidate = candidates[next.place];
        if (!names.insert(lower_case(candidate.name)).second) continue;
        NearFont font = near_font(candidate);
        if (next.price != 0) font.differences.push_back({Said::NEAR_OTHER_NAME, {candidate.name, wanted}});
        nearest.push_back(std::move(font));
    }
    return nearest;
}

}  // namespace

std::vector<NearFont> find_nearest(const std::string& wanted, const std::vector<Candidate>& candidates,
                                   std::size_t most) {
    if (const std::optional<XlfdFields> fields = fields_of_pattern(wanted))
        return nearest_names(*fields, candidates, most);
    std::vector<NearFont> nearest = nearest_aliases(wanted, candidates, most);
    const std::string meant = meant_by_alias(wanted);
    const std::optional<XlfdFields> fields = fields_of_pattern(meant);
    if (!fields || nearest.size() >= most) return nearest;
    for (NearFont& font : nearest_names(*fields, candidates, most - nearest.size(), OTHER_FAMILY - 1))
        nearest.push_back(std::move(font));
    return nearest;
}

}  // namespace gw::diagnosis
