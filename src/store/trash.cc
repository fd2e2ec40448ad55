// SPDX-License-Identifier: MIT
#include "store/trash.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "core/gw_dir.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontfiles/index_text.h"
#include "platform/host_paths.h"
#include "store/font_action.h"
#include "store/take_back.h"
#include "store/trash_bin.h"
#include "store/trash_policy.h"

namespace gw {

namespace {

using trash::KeptFile;
using trash::KeptFont;

/// A failure of the system names the font directory: the user knows nothing of ours.
Failure of_directory(const Directory& fonts, const Failure& failure) {
    return failure.reason == Reason::SYSTEM ? Failure::of_system(fonts.path(), failure.error) : failure;
}

Failure is_gone(const Directory& fonts) {
    return Failure{fonts.path(), Reason::NOT_IN_TRASH};
}

TrashedFont shown(const KeptFont& kept) {
    TrashedFont font;
    font.file_name = kept.file_name();
    font.font_names = kept.font_names();
    for (const KeptFile& file : kept.files) {
        font.files.push_back(file.name);
        font.bytes += file.size;
    }
    font.was_replaced = !kept.came.empty();
    return font;
}

TrashEntry shown(const Directory& fonts, const trash::Manifest& manifest) {
    TrashEntry entry;
    entry.dir = fonts.path();
    entry.id = manifest.entry;
    entry.action = manifest.action;
    entry.time = trash::time_of_entry(manifest.entry).value_or(0);
    entry.user = manifest.user;
    for (const KeptFont& kept : manifest.fonts) {
        entry.fonts.push_back(shown(kept));
        entry.bytes += entry.fonts.back().bytes;
    }
    return entry;
}

/// Whether the file, which may be metrics in their subdirectory, is there.
bool look_at(const Directory& fonts, const std::string& name, struct stat& info) {
    const Result<PlaceBelow> place = PlaceBelow::of(fonts, name);
    return place && place->dir().look_at(place->name(), info);
}

bool is_resource(const std::string& name) {
    const std::string small = lower_case(name);
    return small.ends_with(".pfa") || small.ends_with(".pfb") || small.ends_with(".afm");
}

/// The list of PostScript resources follows the fonts.
void make_resources_anew(DirectoryChange& change) {
    const std::string dir = change.dir().path();
    change.afterwards("", [dir] { GW_DIR(dir.c_str()).make_upr_file(0, nullptr); });
}

/// How the index names its files, by the names without options.
using Fields = std::map<std::string, std::set<std::string>>;

void take_out_with_lines(DirectoryChange& change, const std::string& name, const Fields& fields) {
    const auto found = fields.find(name);
    if (found != fields.end()) {
        for (const std::string& field : found->second) change.strike_out(field, INT_MAX);
    }
    (void)change.take_out(name, found == fields.end());
}

/// Fonts that come back with a change of their directory.
class Return {
  public:
    Return(DirectoryChange& change, const Directory& entry, const trash::Manifest& manifest)
        : change_(change), entry_(entry), manifest_(manifest) {
        for (const IndexEntry& line : index_entries(change.index())) {
            const std::string name(indexed_file(line.file_name).name);
            files_[lower_case(line.font_name)].insert(name);
            fields_[name].insert(line.file_name);
        }
        for (const KeptFont& font : manifest_.fonts) fonts_.emplace(font.file_name(), &font);
    }

    Outcome bring_back() {
        if (Outcome begun = begin(); !begun) return begun;
        for (const KeptFont& font : manifest_.fonts) {
            if (Outcome back = bring_back(font); !back) return back;
        }
        return done();
    }

    /// Group by group; see trash.h. All fonts of the manifest are in a group.
    Result<std::size_t> bring_back(const std::vector<std::vector<std::string>>& groups,
                                   const std::function<bool(std::size_t)>& goes_on) {
        if (Outcome begun = begin(); !begun) return begun.failure();
        for (std::size_t group = 0; group < groups.size(); ++group) {
            if (!goes_on(group)) {
                if (!going_.empty()) return Failure{change_.dir().path(), Reason::GIVEN_UP};
                return group;
            }
            for (const std::string& name : groups[group]) {
                if (Outcome back = bring_back(*fonts_.at(name)); !back) return back.failure();
            }
        }
        return groups.size();
    }

  private:
    /// Makes way for all of them.
    Outcome begin() {
        find_what_goes();
        for (const KeptFont& font : manifest_.fonts) {
            if (Outcome free = has_free_way(font); !free) return free;
        }
        take_out();
        return done();
    }

    /// What came in the place of the fonts, if it is still that.
    void find_what_goes() {
        for (const KeptFont& font : manifest_.fonts) {
            for (const KeptFile& file : font.files) coming_.insert(file.name);
            for (const trash::CameFile& file : font.came) {
                struct stat info = {};
                if (look_at(change_.dir(), file.name, info) && file.stamp.fits(info))
                    going_.insert(file.name);
            }
        }
    }

    [[nodiscard]] Outcome has_free_way(const KeptFont& font) const {
        struct stat info = {};
        for (const KeptFile& file : font.files) {
            if (going_.count(file.name) == 0 && look_at(change_.dir(), file.name, info))
                return Failure{change_.dir().path_of(file.name), Reason::FILE_IN_THE_WAY};
        }
        if (font.files.empty() && !change_.will_have(font.file_name()))
            return Failure::of_system(change_.dir().path_of(font.file_name()), ENOENT);
        for (const std::string& name : font.font_names()) {
            if (Outcome free = has_free_name(font, name); !free) return free;
        }
        return done();
    }

    /// No file has got the font's name since.
    [[nodiscard]] Outcome has_free_name(const KeptFont& font, const std::string& name) const {
        const auto found = files_.find(lower_case(name));
        if (found == files_.end()) return done();
        for (const std::string& file : found->second) {
            const bool is_twin = std::find(font.twins.begin(), font.twins.end(), file) != font.twins.end();
            if (is_twin || going_.count(file) > 0) continue;
            return Failure{
                .subject = change_.dir().path_of(file), .reason = Reason::NAME_IN_THE_WAY, .detail = name};
        }
        return done();
    }

    void take_out() {
        for (const std::string& name : going_) {
            if (coming_.count(name) == 0) {
                take_out_with_lines(change_, name, fields_);
            } else {
                for (const std::string& field : fields_[name]) change_.strike_out(field, INT_MAX);
            }
        }
    }

    Outcome bring_back(const KeptFont& font) {
        for (const KeptFile& file : font.files) {
            if (Outcome back = change_.bring_back(entry_, manifest_.entry, file); !back) return back;
            if (is_resource(file.name)) make_resources_anew(change_);
        }
        // A record that somebody has changed may name files that are not there.
        const auto has_file = [this](const std::string& line) {
            return change_.will_have(trash::file_of_line(line));
        };
        for (const std::string& line : font.lines) {
            if (has_file(line)) change_.enter(line);
        }
        for (const std::string& line : font.scalable_lines) {
            if (has_file(line)) change_.enter_scalable(line);
        }
        return done();
    }

    DirectoryChange& change_;
    const Directory& entry_;
    const trash::Manifest& manifest_;
    std::map<std::string, std::set<std::string>> files_;  // by font name
    std::map<std::string, const KeptFont*> fonts_;        // by file name
    Fields fields_;
    std::set<std::string> coming_;
    std::set<std::string> going_;
};

/// The fonts of the entry that are named by their files come back as `bring` says; without names all do.
Outcome return_fonts(DirectoryChange& change, const std::string& id,
                     const std::optional<std::set<std::string>>& file_names,
                     const std::function<Outcome(Return&)>& bring) {
    const std::optional<TrashBin> bin = change.trash();
    std::optional<trash::Manifest> manifest = bin ? bin->offered(id) : std::nullopt;
    if (manifest && file_names) {
        std::erase_if(manifest->fonts,
                      [&](const KeptFont& font) { return file_names->count(font.file_name()) == 0; });
        if (manifest->fonts.size() < file_names->size()) return is_gone(change.dir());
    }
    if (!manifest || manifest->fonts.empty()) return is_gone(change.dir());
    const Result<Directory> entry = bin->entry(id);
    if (!entry) return of_directory(change.dir(), entry.failure());
    if (Outcome made = change.make_index(); !made) return made;
    change.use_entry(id);
    Return fonts(change, *entry, *manifest);
    return bring(fonts);
}

void take_out(DirectoryChange& change, const std::vector<DirectoryChange::Came>& files) {
    Fields fields;
    for (const IndexEntry& line : index_entries(change.index()))
        fields[std::string(indexed_file(line.file_name).name)].insert(line.file_name);
    for (const DirectoryChange::Came& file : files) {
        struct stat info = {};
        if (!change.will_have(file.name) || !look_at(change.dir(), file.name, info) || !file.stamp.fits(info))
            continue;
        take_out_with_lines(change, file.name, fields);
        if (is_resource(file.name)) make_resources_anew(change);
    }
}

/// Our directory, if there is one; the trash is looked at without its lock.
Result<std::optional<Directory>> own_directory(const Directory& fonts) {
    if (!fonts.has(OWN_DIRECTORY_NAME)) return std::optional<Directory>();
    Result<Directory> own = trusted_below(fonts, OWN_DIRECTORY_NAME, fonts);
    if (!own) return of_directory(fonts, own.failure());
    return std::optional<Directory>(std::move(*own));
}

/// Runs the step with the trash of a directory, for whoever holds the lock.
Outcome in_trash(const std::string& dir,
                 const std::function<Outcome(const TrashBin*, const OwnDirectory*)>& step) {
    const Result<Directory> fonts = Directory::open(dir);
    if (!fonts) return fonts.failure();
    const auto there = own_directory(*fonts);
    if (!there) return there.failure();
    if (!*there) return step(nullptr, nullptr);
    const auto own = OwnDirectory::enter(*fonts);
    if (!own) return own.failure();
    if (Outcome recovered = recover(*fonts, **own); !recovered) return recovered;
    const std::optional<TrashBin> bin = TrashBin::find(*fonts, (*own)->dir());
    return step(bin ? &*bin : nullptr, own->get());
}

/// Whether the trash is there and can be relied on, or can be made.
bool can_have_trash(const Directory& fonts, const std::optional<Directory>& own) {
    const auto is_writeable = [](const Directory& dir) {
        return ::faccessat(dir.fd(), ".", W_OK | X_OK, AT_EACCESS) == 0;
    };
    if (!own) return is_writeable(fonts);
    return is_writeable(*own) && (!own->has(TrashBin::NAME) || TrashBin::find(fonts, *own));
}

/// Whether there is room for what a change writes: the new index, the journal and the manifest.
bool has_room(const Directory& fonts, const std::optional<Directory>& own) {
    constexpr fsblkcnt_t BLOCKS_BESIDE_THE_INDEX = 4;
    const std::optional<TrashBin> bin = own ? TrashBin::find(fonts, *own) : std::nullopt;
    if (bin && !bin->entries().empty()) return true;
    struct statvfs disk = {};
    if (::fstatvfs(fonts.fd(), &disk) != 0 || disk.f_blocks == 0 || disk.f_frsize == 0) return true;
    struct stat index = {};
    const bool has_index = fonts.look_at(FONT_INDEX_NAME, index);
    const fsblkcnt_t blocks = has_index ? static_cast<fsblkcnt_t>(index.st_size) / disk.f_frsize : 0;
    const fsblkcnt_t free = runs_as_superuser() ? disk.f_bfree : disk.f_bavail;
    return free >= blocks + BLOCKS_BESIDE_THE_INDEX;
}

}  // namespace

bool TrashEntry::is_replacement() const {
    return std::any_of(fonts.begin(), fonts.end(), [](const TrashedFont& font) { return font.was_replaced; });
}

Result<std::vector<TrashEntry>> trash_entries(const std::string& dir) {
    (void)settle(dir);
    return look_into_trash(dir);
}

Result<std::vector<TrashEntry>> look_into_trash(const std::string& dir) {
    std::vector<TrashEntry> entries;
    const Result<Directory> fonts = Directory::open(dir);
    if (!fonts) return fonts.failure();
    const auto own = own_directory(*fonts);
    if (!own) return own.failure();
    const std::optional<TrashBin> bin = *own ? TrashBin::find(*fonts, **own) : std::nullopt;
    if (!bin) return entries;
    for (const std::string& name : bin->entries()) {
        if (const auto manifest = bin->offered(name)) entries.push_back(shown(*fonts, *manifest));
    }
    std::reverse(entries.begin(), entries.end());
    return entries;
}

std::vector<TrashEntry> entries_of_action(const std::string& action, const std::vector<std::string>& dirs) {
    std::vector<TrashEntry> found;
    for (const std::string& dir : dirs) {
        Result<std::vector<TrashEntry>> entries = trash_entries(dir);
        if (!entries) continue;
        for (TrashEntry& entry : *entries) {
            if (entry.action == action) found.push_back(std::move(entry));
        }
    }
    return found;
}

std::vector<TrashEntry> entries_of_last_action(const std::vector<std::string>& dirs) {
    std::vector<TrashEntry> newest;
    for (const std::string& dir : dirs) {
        Result<std::vector<TrashEntry>> entries = trash_entries(dir);
        if (!entries || entries->empty()) continue;
        const auto age = [](const TrashEntry& entry) { return std::pair(entry.time, entry.id); };
        if (newest.empty() || age(entries->front()) > age(newest.front())) newest = {entries->front()};
    }
    return newest.empty() ? newest : entries_of_action(newest.front().action, dirs);
}

Outcome bring_back(const std::string& dir, const std::string& id) {
    return in_change(dir, [&](DirectoryChange& change) {
        return return_fonts(change, id, std::nullopt, [](Return& fonts) { return fonts.bring_back(); });
    });
}

Outcome bring_back_font(const std::string& dir, const std::string& id, const std::string& file_name) {
    return in_change(dir, [&](DirectoryChange& change) {
        return return_fonts(change, id, {{file_name}}, [](Return& fonts) { return fonts.bring_back(); });
    });
}

Result<std::size_t> bring_back_groups(const std::string& dir, const std::string& id,
                                      const std::vector<std::vector<std::string>>& groups,
                                      const std::function<bool(std::size_t)>& goes_on) {
    std::set<std::string> names;
    for (const std::vector<std::string>& group : groups) names.insert(group.begin(), group.end());
    std::size_t count = 0;
    const Outcome outcome = in_change(dir, [&](DirectoryChange& change) {
        return return_fonts(change, id, names, [&](Return& fonts) {
            const Result<std::size_t> back = fonts.bring_back(groups, goes_on);
            if (!back) return Outcome(back.failure());
            count = *back;
            return done();
        });
    });
    if (!outcome) return outcome.failure();
    return count;
}

Outcome bring_back_all(const std::vector<TrashEntry>& entries) {
    return as_one_change([&] {
        Outcome outcome;
        for (const TrashEntry& entry : entries) {
            if (outcome) outcome = bring_back(entry.dir, entry.id);
        }
        return outcome;
    });
}

Outcome take_out_again(const std::vector<FontAction::Came>& came) {
    return as_one_change([&] {
        Outcome outcome;
        for (const FontAction::Came& directory : came) {
            if (!outcome) break;
            outcome = in_change(directory.dir, [&](DirectoryChange& change) {
                take_out(change, directory.files);
                return done();
            });
        }
        return outcome;
    });
}

std::set<std::string> would_be_lost(const std::string& dir, const std::set<std::string>& files) {
    const Result<Directory> fonts = Directory::open(dir);
    if (!fonts || !keeps_what_is_taken_out()) return files;
    const auto own = own_directory(*fonts);
    if (!own || !can_have_trash(*fonts, *own) || !has_room(*fonts, *own)) return files;
    std::set<std::string> lost;
    off_t bytes = 0;
    for (const std::string& name : files) {
        struct stat info = {};
        if (!look_at(*fonts, name, info)) continue;  // nothing is lost with it
        if (is_fit_for_trash(info, *fonts)) {
            bytes += info.st_size;
        } else {
            lost.insert(name);
        }
    }
    return bytes <= trash_limits().most_bytes ? lost : files;
}

Outcome empty_trash_entry(const std::string& dir, const std::string& id) {
    return in_trash(dir, [&](const TrashBin* bin, const OwnDirectory*) {
        const std::vector<std::string> names = bin != nullptr ? bin->entries() : std::vector<std::string>();
        if (std::find(names.begin(), names.end(), id) != names.end()) return bin->remove(id);
        return Outcome(Failure{dir, Reason::NOT_IN_TRASH});
    });
}

Outcome empty_trash_of_fonts(const std::string& dir, const std::string& id,
                             const std::set<std::string>& file_names) {
    return in_trash(dir, [&](const TrashBin* bin, const OwnDirectory* own) {
        if (bin != nullptr) return bin->remove_fonts(*own, id, file_names);
        return Outcome(Failure{dir, Reason::NOT_IN_TRASH});
    });
}

Outcome empty_trash(const std::string& dir) {
    return in_trash(dir, [&](const TrashBin* bin, const OwnDirectory*) {
        Outcome first_failure;
        for (const std::string& name : bin != nullptr ? bin->entries() : std::vector<std::string>()) {
            Outcome removed = bin->remove(name);
            if (!removed && first_failure) first_failure = removed;
        }
        return first_failure;
    });
}

}  // namespace gw
