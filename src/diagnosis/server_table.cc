// SPDX-License-Identifier: MIT
#include "diagnosis/server_table.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "fontfiles/server_index.h"

namespace gw::diagnosis {

namespace {

constexpr double DEFAULT_DECIPOINTS = 120;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// The order of names in the server's tables: numbers by their value, everything else by its bytes. Compares
/// at most `limit` characters.
int compare_names(std::string_view one, std::string_view other, std::size_t limit) {
    const auto at = [](std::string_view text, std::size_t i) { return i < text.size() ? text[i] : '\0'; };
    bool were_digits = false;
    for (std::size_t i = 0; i < limit; ++i) {
        const char a = at(one, i);
        const char b = at(other, i);
        if (a == '\0' && b == '\0') return 0;
        const bool are_digits = is_digit(a) && is_digit(b);
        if (are_digits && !were_digits) {
            std::size_t end = i;
            while (is_digit(at(one, end)) && is_digit(at(other, end))) ++end;
            if (is_digit(at(other, end))) return -1;
            if (is_digit(at(one, end))) return 1;
        }
        if (a != b) return static_cast<unsigned char>(a) < static_cast<unsigned char>(b) ? -1 : 1;
        were_digits = are_digits;
    }
    return 0;
}

/// A pattern, understood: what follows an asterisk stands for itself, also another asterisk.
class ServerPattern {
  public:
    explicit ServerPattern(std::string_view pattern) {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            const bool is_taken_as_it_is = !parts_.empty() && parts_.back().kind == Part::Kind::ANY;
            Part::Kind kind = Part::Kind::ITSELF;
            if (!is_taken_as_it_is && pattern[i] == '*') kind = Part::Kind::ANY;
            if (!is_taken_as_it_is && pattern[i] == '?') kind = Part::Kind::ONE;
            parts_.push_back({kind, pattern[i]});
        }
    }

    /// What a failure comes back to is the last asterisk, never one before it.
    [[nodiscard]] bool matches(std::string_view name) const {
        std::size_t at = 0;
        std::size_t behind_any = NONE;
        std::size_t resume = 0;
        for (std::size_t i = 0; i < name.size();) {
            if (at < parts_.size() && parts_[at].kind == Part::Kind::ANY) {
                behind_any = ++at;
                resume = i;
            } else if (at < parts_.size() && parts_[at].takes(name[i])) {
                ++at;
                ++i;
            } else if (behind_any != NONE) {
                at = behind_any;
                i = ++resume;
            } else {
                return false;
            }
        }
        return at == parts_.size() || (at + 1 == parts_.size() && parts_[at].kind == Part::Kind::ANY);
    }

  private:
    static constexpr std::size_t NONE = std::string_view::npos;
    struct Part {
        enum class Kind { ANY, ONE, ITSELF };
        Kind kind;
        char c;
        [[nodiscard]] bool takes(char other) const { return kind == Kind::ONE || c == other; }
    };
    std::vector<Part> parts_;
};

/// Finds the entry that halving hits first or, for a pattern, the first one that it matches and `suits`
/// takes.
template <class Entry, class Suits>
const Entry* find(const std::vector<const Entry*>& entries, const std::string& pattern, Suits suits) {
    const std::size_t wild = pattern.find_first_of("*?");
    const bool is_pattern = wild != std::string::npos;
    // Numbers in front of an asterisk may go on behind it.
    const std::size_t limit =
        is_pattern ? std::min(wild, pattern.find_first_of("0123456789")) : std::string::npos;
    std::size_t left = 0;
    std::size_t right = entries.size();
    while (left < right) {
        const std::size_t center = (left + right) / 2;
        const int order = compare_names(pattern, entries[center]->name, limit);
        if (order == 0 && !is_pattern) return entries[center];
        if (order == 0) break;
        if (order < 0) right = center;
        if (order > 0) left = center + 1;
    }
    if (!is_pattern) return nullptr;
    const ServerPattern wanted(pattern);
    for (std::size_t i = left; i < right; ++i)
        if (suits(*entries[i]) && wanted.matches(entries[i]->name)) return entries[i];
    return nullptr;
}

ServerTable::Opener opener_of(const std::string& file) {
    if (file.empty()) return ServerTable::Opener::BUILT_IN;
    const bool is_outline = renderer_of(file) == FontRenderer::OUTLINE;
    return is_outline ? ServerTable::Opener::OUTLINES : ServerTable::Opener::BITMAPS;
}

bool is_of_default_size(const ServerSizes& sizes) {
    constexpr double DECIPOINTS = 10;
    return sizes.point_form == SizeForm::NUMBER &&
           static_cast<int>(sizes.points[3] * DECIPOINTS) == static_cast<int>(DEFAULT_DECIPOINTS);
}

}  // namespace

bool server_pattern_matches(const std::string& pattern, const std::string& name) {
    return ServerPattern(pattern).matches(name);
}

ServerTable::ServerTable(const FontSource& source, ScreenResolution screen) : screen_(screen) {
    for (const IndexEntry& entry : source.facts.index.entries) add_font(entry, source.is_unscaled());
    add_aliases(source.facts.aliases);
    is_source_of_bitmaps_ = !source.facts.directory.empty() && !fonts_.empty();
    sort();
}

void ServerTable::add_font(const IndexEntry& entry, bool is_unscaled) {
    // Fonts in the server itself have no files.
    if (!entry.file_name.empty() && renderer_of(entry.file_name) == FontRenderer::NONE) return;
    const Opener opener = opener_of(entry.file_name);
    const std::optional<ServerSizes> sizes = sizes_in(entry.font_name);
    const bool is_scaled = sizes && !sizes->has_matrix() && (sizes->has_all_sizes() || !is_unscaled);
    const Plain* font = nullptr;
    if (!is_scaled || sizes->has_size())
        font = &fonts_.emplace_back(Plain{entry.font_name, entry.file_name, "", false, opener});
    if (!is_scaled) return;
    if (font != nullptr) {
        add_scalable(name_of_face(entry.font_name, *sizes), entry.file_name, opener, *sizes, font);
    } else {
        faces_.push_back({entry.font_name, entry.file_name, opener, {}});
        face_of_name_.try_emplace(entry.font_name, &faces_.back());
    }
}

void ServerTable::add_scalable(const std::string& name, const std::string& file, Opener opener,
                               const ServerSizes& sizes, const Plain* font) {
    Scalable* face = scalable_of(name);
    if (face == nullptr) {
        face = &faces_.emplace_back(Scalable{name, file, opener, {}});
        face_of_name_.try_emplace(name, face);
    } else if (is_of_default_size(sizes)) {
        face->file = file;
    }
    Instance instance = {sizes, font};
    // What contradicts itself is kept all the same.
    (void)complete(instance.sizes, screen_);
    face->instances.push_back(instance);
}

/// The first face of that name. A name with an asterisk is a pattern here.
ServerTable::Scalable* ServerTable::scalable_of(const std::string& name) {
    if (name.find_first_of("*?") == std::string::npos) {
        const auto found = face_of_name_.find(name);
        return found == face_of_name_.end() ? nullptr : found->second;
    }
    const ServerPattern pattern(name);
    const auto found = std::find_if(faces_.begin(), faces_.end(),
                                    [&](const Scalable& face) { return pattern.matches(face.name); });
    return found == faces_.end() ? nullptr : &*found;
}

void ServerTable::add_aliases(const ServerAliases& aliases) {
    for (std::size_t i = 0; i <= aliases.aliases.size(); ++i) {
        if (aliases.has_file_names && i == aliases.before_file_names) add_names_of_files();
        if (i == aliases.aliases.size()) return;
        const ServerAlias& alias = aliases.aliases[i];
        fonts_.push_back({alias.alias, "", alias.target, true, Opener::BITMAPS});
    }
}

/// A name that is taken already stays what it is. Of fonts that have no size of their own the server takes no
/// file names.
void ServerTable::add_names_of_files() {
    std::unordered_set<std::string> taken;
    for (const Plain& font : fonts_) taken.insert(font.name);
    const std::size_t count = fonts_.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (fonts_[i].is_alias || fonts_[i].file.empty()) continue;
        std::string name = server_lower_case(without_renderer_suffix(fonts_[i].file));
        if (!taken.insert(name).second) continue;
        fonts_.push_back({std::move(name), "", fonts_[i].name, true, Opener::BITMAPS});
    }
}

void ServerTable::sort() {
    for (const Plain& font : fonts_) plain_.push_back(&font);
    for (const Scalable& face : faces_) scalable_.push_back(&face);
    const auto by_name = [](const auto* one, const auto* other) {
        return compare_names(one->name, other->name, std::string::npos) < 0;
    };
    std::stable_sort(plain_.begin(), plain_.end(), by_name);
    std::stable_sort(scalable_.begin(), scalable_.end(), by_name);
}

const ServerTable::Plain* ServerTable::find_plain(const std::string& pattern) const {
    return find(plain_, pattern, [](const Plain&) { return true; });
}

const ServerTable::Scalable* ServerTable::find_scalable(const std::string& pattern,
                                                        const ServerSizes& wanted) const {
    const bool is_special = wanted.has_matrix() || wanted.has_subset;
    return find(scalable_, pattern, [is_special](const Scalable& face) {
        return !is_special || face.opener != Opener::BUILT_IN;
    });
}

}  // namespace gw::diagnosis
