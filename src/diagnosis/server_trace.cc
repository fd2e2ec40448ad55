// SPDX-License-Identifier: MIT
//
// What is here was measured with Xvfb 21.1.7 and libXfont2 2.0.6; the oracle test compares it with the server
// that is installed.
#include "diagnosis/server_trace.h"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "core/text.h"
#include "fontfiles/server_index.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t LONGEST_NAME = 255;
constexpr int MOST_ALIASES = 19;  // that the server follows

// --- how good a bitmap is ----------------------------------------------------

/// The server's marks, whole numbers: the size itself, twice the size, and larger is better than smaller.
int mark_of(double factor, int weight) {
    constexpr int SAME = 16;
    constexpr int DOUBLE = 4;
    constexpr int LARGER = 3;
    constexpr int SMALLER = 2;
    if (factor == 1) return SAME * weight;
    if (factor == 2) return DOUBLE * weight;
    if (factor > 1) return static_cast<int>(static_cast<double>(LARGER * weight) / factor);
    return static_cast<int>(static_cast<double>(SMALLER * weight) * factor);
}

/// The marks of a bitmap that is taken as it is.
int mark_as_it_is(double factor, int weight) {
    constexpr int NEAR = 8;
    const double most = NEAR * weight;
    return static_cast<int>(factor >= 1 ? most / factor : most * factor);
}

constexpr int HEIGHT = 10;  // counts more than the width
constexpr int WIDTH = 1;

struct Mark {
    int points = 0;
    double down = HUGE_VAL;
    double across = HUGE_VAL;

    [[nodiscard]] bool is_better_than(const Mark& other) const {
        if (points != other.points) return points > other.points;
        return down < other.down || (down == other.down && across < other.across);
    }
};

Mark mark_of(const Scaling& by) {
    return {mark_of(by.down, HEIGHT) + mark_of(by.across, WIDTH), by.down, by.across};
}

/// The marks of a bitmap that is nearly of the size; no value for another one.
std::optional<int> mark_as_it_is(const ServerSizes& bitmap, const ServerSizes& wanted, const Scaling& by) {
    constexpr double TINY = 1e-20;
    const SizeMatrix& has = bitmap.pixels;
    const SizeMatrix& wants = wanted.pixels;
    const double across = wants[0] * by.widening;
    if (std::abs(by.across) <= TINY || std::abs(by.down) <= TINY) return {};
    const bool is_near = std::abs(across - has[0]) < 1 && std::abs(wants[3] - has[3]) < 1 &&
                         std::abs(wants[1] * by.widening - has[1]) < TINY &&
                         std::abs(wants[2] - has[2]) < TINY;
    if (!is_near) return {};
    return mark_as_it_is(wants[3] / has[3], HEIGHT) + mark_as_it_is(across / has[0], WIDTH);
}

// --- names -------------------------------------------------------------------

/// "[65_90]" at the end of a full name; "" for none.
std::string subset_of(const std::string& name) {
    constexpr int DASHES = 14;
    std::size_t at = 0;
    for (int dash = 0; dash < DASHES && at != std::string::npos; ++dash)
        at = name.find('-', dash == 0 ? 0 : at + 1);
    if (at == std::string::npos) return {};
    at = name.find('[', at);
    return at == std::string::npos ? std::string() : name.substr(at);
}

/// What an alias leads to. One for all sizes passes on the size that is asked for.
std::string target_of(const ServerTable::Plain& alias, const ServerSizes& wanted, const std::string& subset) {
    const std::optional<ServerSizes> its_sizes = sizes_in(alias.name);
    if (!its_sizes || its_sizes->has_size() || its_sizes->has_asterisk) return alias.target;
    return with_sizes(alias.target, wanted, subset).value_or(alias.target);
}

std::string path_of(const FontSource& source, const std::string& file) {
    return file.empty() ? std::string() : source.facts.directory + std::string(indexed_file(file).name);
}

/// Whether the server gets at the file. Bitmaps that are links are refused.
bool is_reachable(const FontSource& source, const std::string& path, ServerTable::Opener opener) {
    const std::vector<std::string>& unreadable = source.facts.unreadable;
    const bool is_shut = source.facts.is_refused && source.facts.trouble == Trouble::UNREADABLE;
    if (is_shut || std::find(unreadable.begin(), unreadable.end(), path) != unreadable.end()) return false;
    struct stat info = {};
    if (opener == ServerTable::Opener::OUTLINES) return ::stat(path.c_str(), &info) == 0;
    return ::lstat(path.c_str(), &info) == 0 && !S_ISLNK(info.st_mode);
}

bool is_unknown(const FontSource& source) {
    return !source.facts.is_known || source.facts.is_refused;
}

void add_unusable(UnusableFile file, Trace& trace) {
    const auto is_it = [&file](const UnusableFile& other) { return other.file == file.file; };
    if (std::none_of(trace.unusable.begin(), trace.unusable.end(), is_it))
        trace.unusable.push_back(std::move(file));
}

}  // namespace

/// What a name asks for, when no index has it.
struct ServerRules::Wanted {
    std::string pattern;
    std::string zeroed;  // by which other elements are searched
    ServerSizes sizes;   // completed
};

/// A bitmap.
struct ServerRules::Found {
    const FontSource* source = nullptr;
    const ServerTable::Plain* font = nullptr;
    bool is_as_it_is = false;
};

ServerRules::ServerRules(const std::vector<FontSource>& sources, ScreenResolution screen)
    : sources_(sources), screen_(screen) {}
ServerRules::~ServerRules() = default;

const ServerTable& ServerRules::table_of(const FontSource& source) const {
    std::unique_ptr<ServerTable>& table = tables_[&source];
    if (!table) table = std::make_unique<ServerTable>(source, screen_);
    return *table;
}

/// All elements that have a name, in the order in which the server has read them.
std::vector<const FontSource*> ServerRules::sources_of_bitmaps() const {
    std::vector<const FontSource*> sources;
    for (const FontSource& source : sources_)
        if (table_of(source).is_source_of_bitmaps()) sources.push_back(&source);
    // The links of a catalogue have priorities for the search only.
    for (auto first = sources.begin(); first != sources.end();) {
        const auto last = std::find_if(first, sources.end(), [first](const FontSource* source) {
            return source->element != (*first)->element;
        });
        std::stable_sort(first, last, [](const FontSource* one, const FontSource* other) {
            return one->place_in_catalogue < other->place_in_catalogue;
        });
        first = last;
    }
    return sources;
}

FileOpening ServerRules::opening_of(const FontSource& source, const std::string& file,
                                    ServerTable::Opener opener) const {
    if (opener == ServerTable::Opener::BUILT_IN) return FileOpening::OPENED;
    const std::string path = path_of(source, file);
    if (!is_reachable(source, path, opener)) return FileOpening::NOT_OPENED;
    const int face = indexed_file(file).face;
    const auto [known, is_new] = openings_.try_emplace(std::to_string(face) + ':' + path);
    if (is_new) {
        const bool is_outline = opener == ServerTable::Opener::OUTLINES;
        known->second = is_outline ? open_outline_file(path, face) : open_bitmap_file(path);
    }
    return known->second;
}

// --- the search --------------------------------------------------------------

Trace ServerRules::follow(const std::string& pattern) const {
    Trace trace;
    std::string name = server_lower_case(pattern);
    std::size_t next = 0;
    if (name.size() > LONGEST_NAME) return trace;
    while (next < sources_.size() && trace.end == Trace::End::NOTHING) {
        const FontSource& source = sources_[next++];
        if (is_unknown(source)) trace.is_certain = false;
        const Step step = look_in(source, name, trace);
        if (step == Step::ALIAS) {
            name = trace.aliases.back().target;
            next = 0;
            if (name.empty()) trace.end = Trace::End::EMPTY_ALIAS;
            if (trace.aliases.size() > MOST_ALIASES) trace.end = Trace::End::CIRCLE;
        }
    }
    return trace;
}

/// Looks in one element. What is wrong with a file ends the search, but not in a catalogue.
ServerRules::Step ServerRules::look_in(const FontSource& source, const std::string& name,
                                       Trace& trace) const {
    Step step = look_up(source, name, trace);
    if (step == Step::NOTHING) step = scale(source, name, trace);
    if (step != Step::END) return step;
    if (kind_of_element(source.element) == ElementKind::CATALOGUE) return pass_over(trace);
    trace.is_damaged = true;
    return step;
}

/// The font that has just been found cannot be opened, and the server looks on.
ServerRules::Step ServerRules::pass_over(Trace& trace) {
    if (trace.source != nullptr) add_unusable({trace.file, trace.source->element, trace.name}, trace);
    trace.end = Trace::End::NOTHING;
    trace.source = nullptr;
    trace.name.clear();
    trace.file.clear();
    return Step::NOTHING;
}

/// Looks for the name among those of the index and the aliases: as it is, then without its sizes.
ServerRules::Step ServerRules::look_up(const FontSource& source, const std::string& name,
                                       Trace& trace) const {
    const ServerTable& table = table_of(source);
    ServerSizes sizes = sizes_in(name).value_or(ServerSizes());
    const ServerTable::Plain* entry = table.find_plain(name);
    if (entry == nullptr) {
        const std::optional<ZeroedName> zero = zeroed(name);
        if (!zero) return Step::NOTHING;
        entry = table.find_plain(zero->name);
        sizes = zero->sizes;
    }
    if (entry == nullptr) return Step::NOTHING;
    if (!entry->is_alias) return open(source, *entry, trace);
    trace.aliases.push_back(
        {entry->name, target_of(*entry, sizes, subset_of(name)), source.element, source.facts.directory});
    return Step::ALIAS;
}

ServerRules::Step ServerRules::open(const FontSource& source, const ServerTable::Plain& font,
                                    Trace& trace) const {
    // A name with a size in front of outlines is no font of its own.
    if (font.opener == ServerTable::Opener::OUTLINES) return Step::NOTHING;
    const std::string path = path_of(source, font.file);
    const FileOpening opening = opening_of(source, font.file, font.opener);
    if (opening == FileOpening::NOT_OPENED) {
        add_unusable({path, source.element, font.name}, trace);
        return Step::NOTHING;
    }
    trace.end = Trace::End::FONT;
    trace.source = &source;
    trace.name = font.name;
    trace.file = path;
    return opening == FileOpening::OPENED ? Step::FONT : Step::END;
}

// --- sizes that are made -----------------------------------------------------

/// Looks for a face that can be had in the size of the name.
ServerRules::Step ServerRules::scale(const FontSource& source, const std::string& name, Trace& trace) const {
    const ServerTable& table = table_of(source);
    const std::optional<ZeroedName> zero = zeroed(name);
    Wanted wanted = {name, zero ? zero->name : "", zero ? zero->sizes : ServerSizes()};
    const ServerTable::Scalable* face = zero ? table.find_scalable(wanted.zeroed, wanted.sizes) : nullptr;
    if (face == nullptr) {
        face = table.find_scalable(name, wanted.sizes);
        if (face == nullptr) return Step::NOTHING;
        wanted.zeroed = face->name;
    }
    if (complete(wanted.sizes, screen_)) return scale(source, *face, wanted, trace);
    trace.sizes_disagree = true;
    return Step::NOTHING;
}

ServerRules::Step ServerRules::scale(const FontSource& source, const ServerTable::Scalable& face,
                                     const Wanted& wanted, Trace& trace) const {
    if (!wanted.sizes.has_matrix() && !wanted.sizes.has_asterisk) {
        for (const ServerTable::Instance& instance : face.instances)
            if (is_of_size(instance.sizes, wanted.sizes)) return open(source, *instance.font, trace);
    }
    // From here on all elements count.
    if (std::any_of(sources_.begin(), sources_.end(), is_unknown)) trace.is_certain = false;
    if (take_size_of_another(source, wanted, trace) == Step::FONT) return Step::FONT;
    (void)pass_over(trace);
    switch (face.opener) {
        case ServerTable::Opener::OUTLINES:
            return draw_outlines(source, face, wanted, trace);
        case ServerTable::Opener::BITMAPS:
            return scale_bitmaps(source, face, wanted, trace);
        case ServerTable::Opener::BUILT_IN:
            break;
    }
    return Step::NOTHING;
}

/// A bitmap of exactly that size in another element. The first element that has one is the last that is
/// tried.
ServerRules::Step ServerRules::take_size_of_another(const FontSource& source, const Wanted& wanted,
                                                    Trace& trace) const {
    for (const FontSource* other : sources_of_bitmaps()) {
        if (other == &source) continue;
        const ServerTable::Scalable* face = table_of(*other).find_scalable(wanted.zeroed, ServerSizes());
        if (face == nullptr) continue;
        for (const ServerTable::Instance& instance : face->instances)
            if (is_of_size(instance.sizes, wanted.sizes)) return open(*other, *instance.font, trace);
    }
    return Step::NOTHING;
}

ServerRules::Step ServerRules::draw_outlines(const FontSource& source, const ServerTable::Scalable& face,
                                             const Wanted& wanted, Trace& trace) const {
    const SizeMatrix& pixels = wanted.sizes.pixels;
    const std::string path = path_of(source, face.file);
    // Here the server may have put a bitmap in the place of the outlines, which it opens in few sizes.
    if (renderer_of(face.file) != FontRenderer::OUTLINE) {
        trace.is_certain = false;
        return Step::NOTHING;
    }
    if (opening_of(source, face.file, face.opener) != FileOpening::OPENED) {
        add_unusable({path, source.element, face.name}, trace);
        return Step::NOTHING;
    }
    if (std::max(length_across(pixels), length_down(pixels)) < 1) return Step::NOTHING;
    trace.end = Trace::End::SCALED;
    trace.source = &source;
    trace.name = face.name;
    trace.file = path;
    return Step::FONT;
}

ServerRules::Step ServerRules::scale_bitmaps(const FontSource& source, const ServerTable::Scalable& face,
                                             const Wanted& wanted, Trace& trace) const {
    const SizeMatrix& pixels = wanted.sizes.pixels;
    if (length_down(pixels) < 1 || length_across(pixels) < 1) return Step::NOTHING;
    Found best = find_best(source, face, wanted);
    const Found by_pattern = find_pattern_in_index(wanted.pattern);
    bool can_be_scaled = true;
    if (by_pattern.font != nullptr && !best.is_as_it_is) {
        best = by_pattern;
        // A font that does not say its size in its name has none here.
        const std::optional<ServerSizes> sizes = sizes_in(best.font->name);
        can_be_scaled = sizes && sizes->pixel_form != SizeForm::NONE;
    }
    if (best.font == nullptr) return Step::NOTHING;
    if (open(*best.source, *best.font, trace) != Step::FONT) return pass_over(trace);
    trace.end = Trace::End::SCALED;
    return can_be_scaled ? Step::FONT : Step::END;
}

/// A bitmap of any element that the pattern itself matches, also through aliases.
ServerRules::Found ServerRules::find_pattern_in_index(const std::string& pattern) const {
    constexpr int MOST_ALIASES_HERE = 20;
    const std::vector<const FontSource*> sources = sources_of_bitmaps();
    std::string name = pattern;
    int aliases = 0;
    for (std::size_t i = 0; i < sources.size();) {
        const ServerTable::Plain* font = table_of(*sources[i]).find_plain(name);
        if (font != nullptr && !font->is_alias) return {sources[i], font, true};
        const bool is_followed = font != nullptr && aliases++ < MOST_ALIASES_HERE;
        if (is_followed) name = font->target;
        i = is_followed ? 0 : i + 1;
    }
    return {};
}

/// The bitmap of the face that is best to be scaled, of all elements. One that is nearly of the size is taken
/// before any that is scaled.
ServerRules::Found ServerRules::find_best(const FontSource& source, const ServerTable::Scalable& face,
                                          const Wanted& wanted) const {
    Found scaled;
    Found as_it_is;
    Mark best = {};
    int best_as_it_is = -1;
    const std::optional<ZeroedName> zero = zeroed(face.name);
    for (const FontSource* other : sources_of_bitmaps()) {
        const ServerTable::Scalable* its_face =
            other == &source ? &face
                             : table_of(*other).find_scalable(zero ? zero->name : face.name, ServerSizes());
        if (its_face == nullptr) continue;
        for (const ServerTable::Instance& instance : its_face->instances) {
            const std::optional<Scaling> by = scaling(instance.sizes, wanted.sizes);
            if (!by) continue;
            if (const Mark mark = mark_of(*by); mark.is_better_than(best)) {
                best = mark;
                scaled = {other, instance.font, by->down == 1 && by->across == 1};
            }
            const std::optional<int> near = mark_as_it_is(instance.sizes, wanted.sizes, *by);
            if (near && *near > best_as_it_is) {
                best_as_it_is = *near;
                as_it_is = {other, instance.font, true};
            }
        }
    }
    return as_it_is.font != nullptr ? as_it_is : scaled;
}

}  // namespace gw::diagnosis
