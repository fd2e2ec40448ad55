// SPDX-License-Identifier: MIT
#include "model/deleted_fonts.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "core/text.h"
#include "model/gw_font.h"

namespace gw {

namespace {

GWFont::GW_FONT_TYPE type_of_file(const std::string& file_name) {
    const std::string extension = font_extension(file_name);
    if (extension == ".pfa" || extension == ".pfb") return GWFont::TYPE1_FONT;
    if (extension == ".ttf" || extension == ".ttc") return GWFont::TRUETYPE_FONT;
    if (extension == ".otf" || extension == ".otc") return GWFont::OPENTYPE_FONT;
    return GWFont::BITMAP_FONT;
}

/// The font as the lists know it; null for files that no index listed.
std::unique_ptr<GWFont> record_of(const TrashedFont& trashed) {
    if (trashed.font_names.empty()) return nullptr;
    auto font = std::make_unique<GWFont>(type_of_file(trashed.file_name));
    std::vector<IndexName> names;
    for (const std::string& name : trashed.font_names) names.push_back({0, name});
    font->set_index_names(std::move(names));
    return font;
}

void add(DeletedFont& font, const TrashedFont& trashed) {
    font.file_names.push_back(trashed.file_name);
    font.font_names.insert(font.font_names.end(), trashed.font_names.begin(), trashed.font_names.end());
    font.files.insert(font.files.end(), trashed.files.begin(), trashed.files.end());
    font.bytes += trashed.bytes;
    font.was_replaced = font.was_replaced || trashed.was_replaced;
}

/// The parts of a font, one for each of its files, come back together.
Outcome bring_one_back(const DeletedFont& font) {
    if (font.file_names.empty()) return Failure{font.dir, Reason::NOT_IN_TRASH};
    return as_one_change([&] {
        Outcome outcome;
        for (const std::string& name : font.file_names) {
            if (outcome) outcome = bring_back_font(font.dir, font.entry, name);
        }
        return outcome;
    });
}

/// The same fonts, those of one entry together.
std::vector<std::vector<DeletedFont>> by_entry(const std::vector<DeletedFont>& fonts) {
    std::vector<std::vector<DeletedFont>> groups;
    std::map<std::pair<std::string, std::string>, std::size_t> places;
    for (const DeletedFont& font : fonts) {
        const auto [place, is_new] = places.try_emplace({font.dir, font.entry}, groups.size());
        if (is_new) groups.emplace_back();
        groups[place->second].push_back(font);
    }
    return groups;
}

/// The entry as it is now; nothing when nothing of it can come back.
std::optional<TrashEntry> entry_now(const std::string& dir, const std::string& id) {
    Result<std::vector<TrashEntry>> entries = trash_entries(dir);
    if (!entries) return std::nullopt;
    const auto found = std::find_if(entries->begin(), entries->end(),
                                    [&](const TrashEntry& entry) { return entry.id == id; });
    return found != entries->end() ? std::optional(std::move(*found)) : std::nullopt;
}

/// Brings fonts back until the watch stops it.
class Bringing {
  public:
    Bringing(const std::vector<DeletedFont>& fonts, const DeletedFontsWatch& watch, ReturnOfFonts& result)
        : fonts_(fonts), watch_(watch), result_(result) {}

    /// All, or none when one of them fails.
    Outcome bring_all(const std::vector<FontAction::Came>& in_their_places) {
        bool goes_on = true;
        for (const std::vector<DeletedFont>& of_entry : by_entry(fonts_)) {
            if (!goes_on) continue;
            const Result<std::size_t> back = bring(of_entry);
            const bool is_given_up = !back && back.failure().reason == Reason::GIVEN_UP;
            if (!back && !is_given_up) return back.failure();
            const std::size_t count = is_given_up ? 0 : *back;
            goes_on = count == of_entry.size();
            const auto first = of_entry.begin();
            result_.done.insert(result_.done.end(), first, first + static_cast<std::ptrdiff_t>(count));
        }
        if (goes_on) return take_out_again(in_their_places);
        if (!in_their_places.empty()) return Failure{"", Reason::GIVEN_UP};
        result_.untried = fonts_.size() - result_.done.size();
        return done();
    }

    /// Those that can come back.
    void bring_each() {
        for (std::size_t i = 0; i < fonts_.size(); ++i) {
            const DeletedFont& font = fonts_[i];
            if (!watch_.before(i + 1, font)) return stop(fonts_.size() - i);
            if (const Outcome back = bring_one_back(font); back) {
                result_.done.push_back(font);
            } else {
                result_.left.emplace_back(font, back.failure());
                const bool is_last = i + 1 == fonts_.size();
                if (!is_last && !watch_.after_failure(font, back.failure()))
                    return stop(fonts_.size() - i - 1);
            }
        }
    }

  private:
    Result<std::size_t> bring(const std::vector<DeletedFont>& of_entry) {
        std::vector<std::vector<std::string>> groups;
        for (const DeletedFont& font : of_entry) {
            if (font.file_names.empty()) return Failure{font.dir, Reason::NOT_IN_TRASH};
            groups.push_back(font.file_names);
        }
        return bring_back_groups(of_entry.front().dir, of_entry.front().entry, groups, [&](std::size_t i) {
            return watch_.before(result_.done.size() + i + 1, of_entry[i]);
        });
    }
    void stop(std::size_t untried) { result_.untried = untried; }

    const std::vector<DeletedFont>& fonts_;
    const DeletedFontsWatch& watch_;
    ReturnOfFonts& result_;
};

/// What was done in directories whose change was not made after all is left.
void take_back(ReturnOfFonts& fonts, const std::vector<FontAction::Failed>& failed) {
    for (const FontAction::Failed& directory : failed) {
        for (const DeletedFont& font : fonts.done) {
            if (font.dir == directory.dir) fonts.left.emplace_back(font, directory.why);
        }
        std::erase_if(fonts.done, [&](const DeletedFont& font) { return font.dir == directory.dir; });
    }
}

/// These fonts are of one entry. Returns whether to go on; the watch may stop it before anything is removed.
bool remove_for_good(const std::vector<DeletedFont>& fonts, std::size_t number,
                     const DeletedFontsWatch& watch, ReturnOfFonts& result) {
    const DeletedFont& first = fonts.front();
    if (!watch.before(number, first)) return false;
    std::set<std::string> names;
    for (const DeletedFont& font : fonts) names.insert(font.file_names.begin(), font.file_names.end());
    const Outcome gone = empty_trash_of_fonts(first.dir, first.entry, names);
    for (const DeletedFont& font : fonts) {
        if (gone) {
            result.done.push_back(font);
        } else {
            result.left.emplace_back(font, gone.failure());
        }
    }
    return gone || watch.after_failure(first, gone.failure());
}

}  // namespace

std::string local_time_text(std::time_t time) {
    std::tm parts = {};
    char text[64] = "";
    if (::localtime_r(&time, &parts) != nullptr) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &parts);
    return text;
}

std::vector<DeletedFont> fonts_of_entry(const TrashEntry& entry) {
    std::vector<DeletedFont> fonts;
    std::map<std::string, std::size_t> places;  // by what fonts of one name share
    for (const TrashedFont& trashed : entry.fonts) {
        const std::unique_ptr<GWFont> record = record_of(trashed);
        const bool joins_others = record != nullptr && record->is_bitmap();
        const std::string key = joins_others ? record->hrn_key() : '\n' + trashed.file_name;
        const auto [place, is_new] = places.try_emplace(key, fonts.size());
        if (is_new) {
            fonts.push_back({.dir = entry.dir,
                             .entry = entry.id,
                             .name = record != nullptr ? record->get_hrn_name() : trashed.file_name,
                             .time = entry.time,
                             .user = entry.user});
        }
        add(fonts[place->second], trashed);
    }
    return fonts;
}

std::vector<DeletedFont> deleted_fonts(const std::vector<std::string>& dirs, LookIntoTrash look) {
    std::vector<DeletedFont> fonts;
    for (const std::string& dir : dirs) {
        const Result<std::vector<TrashEntry>> entries = look(dir);
        if (!entries) continue;
        for (const TrashEntry& entry : *entries) {
            for (DeletedFont& font : fonts_of_entry(entry)) fonts.push_back(std::move(font));
        }
    }
    std::stable_sort(fonts.begin(), fonts.end(),
                     [](const DeletedFont& a, const DeletedFont& b) { return a.time > b.time; });
    return fonts;
}

std::vector<DeletedFont> fonts_of_action(const std::vector<FontAction::Kept>& kept) {
    std::vector<DeletedFont> fonts;
    for (const FontAction::Kept& one : kept) {
        const std::optional<TrashEntry> entry = entry_now(one.dir, one.entry);
        if (!entry) {
            fonts.push_back({.dir = one.dir, .entry = one.entry});
            continue;
        }
        for (DeletedFont& font : fonts_of_entry(*entry)) fonts.push_back(std::move(font));
    }
    return fonts;
}

ReturnOfFonts bring_fonts_back(const std::vector<DeletedFont>& fonts,
                               const std::vector<FontAction::Came>& in_their_places,
                               const DeletedFontsWatch& watch) {
    ReturnOfFonts result;
    FontAction action;
    Bringing bringing(fonts, watch, result);
    const Outcome all = as_one_change([&] { return bringing.bring_all(in_their_places); });
    if (!all) {
        result = {};
        if (all.failure().reason == Reason::GIVEN_UP) {
            result.untried = fonts.size();
        } else {
            bringing.bring_each();
        }
    }
    watch.at_end();
    take_back(result, action.commit());
    result.came = action.came();
    return result;
}

ReturnOfFonts delete_for_good(const std::vector<DeletedFont>& fonts, const DeletedFontsWatch& watch) {
    constexpr std::size_t FEWEST_AT_ONCE = 10;
    constexpr std::size_t MOST_TIMES = 50;  // the manifest is written anew each time
    const std::size_t at_once = std::max(FEWEST_AT_ONCE, fonts.size() / MOST_TIMES);
    ReturnOfFonts result;
    std::size_t number = 0;
    for (const std::vector<DeletedFont>& of_entry : by_entry(fonts)) {
        for (std::size_t first = 0; first < of_entry.size(); first += at_once) {
            const auto begin = of_entry.begin() + static_cast<std::ptrdiff_t>(first);
            const auto some = static_cast<std::ptrdiff_t>(std::min(at_once, of_entry.size() - first));
            const bool goes_on = remove_for_good({begin, begin + some}, number + 1, watch, result);
            number += static_cast<std::size_t>(some);
            if (goes_on) continue;
            result.untried = fonts.size() - result.done.size() - result.left.size();
            return result;
        }
    }
    return result;
}

}  // namespace gw
