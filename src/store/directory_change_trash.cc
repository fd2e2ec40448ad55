// SPDX-License-Identifier: MIT
//
// What a change of a directory has to do with its trash: what it takes out goes there, what was there comes
// back, and it gives way when there is no room. The rest of a change is in directory_change.cc.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <utility>

#include "core/file_calls.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontfiles/index_text.h"
#include "platform/host_paths.h"
#include "store/directory_change.h"
#include "store/joint_change.h"
#include "store/take_back.h"
#include "store/trash_bin.h"
#include "store/trash_policy.h"

namespace gw {

namespace {

using trash::KeptFont;
using Files = std::map<std::string, unsigned>;
using Arrivals = std::map<std::string, FileIdentity>;

/// The name without the metrics directory and without its extension: files of one font share it.
std::string stem_of(const std::string& name) {
    const std::string base = name.substr(name.rfind('/') + 1);
    return base.substr(0, base.rfind('.'));
}

bool is_metrics(const std::string& name) {
    return name.find('/') != std::string::npos || lower_case(name).ends_with(".afm");
}

/// What a change has taken out that was there before it, by name with the numbers, and what has come to stay.
struct Traffic {
    explicit Traffic(const std::vector<journal::Record>& records) {
        for (const journal::Record& record : records) {
            if (const auto* out = std::get_if<journal::Out>(&record)) leave(*out);
            if (const auto* put = std::get_if<journal::Put>(&record)) arrive(put->name, put->stamp);
            if (const auto* back = std::get_if<journal::Back>(&record)) arrive(back->name, back->stamp);
        }
    }

    Files originals;
    Arrivals arrivals;

  private:
    static bool is_an_index(const std::string& name) {
        return name == FONT_INDEX_NAME || name == SCALABLE_INDEX_NAME;
    }
    void leave(const journal::Out& out) {
        arrivals.erase(out.name);
        if (known_.insert(out.name).second && !is_an_index(out.name)) originals.emplace(out.name, out.number);
    }
    void arrive(const std::string& name, const FileIdentity& stamp) {
        known_.insert(name);
        if (!is_an_index(name)) arrivals.insert_or_assign(name, stamp);
    }
    std::set<std::string> known_;
};

/// Sorts what goes into fonts.
class Sorting {
  public:
    /// The font that this file is of, or that lines of this file are of.
    KeptFont& font_of(const std::string& name) {
        const auto [place, is_new] = places_.try_emplace(name, fonts_.size());
        if (is_new) fonts_.emplace_back();
        return fonts_[place->second];
    }
    /// The font that metrics are of, if there is one.
    KeptFont* font_with_stem(const std::string& stem) {
        for (const auto& [name, place] : places_) {
            if (!is_metrics(name) && stem_of(name) == stem) return &fonts_[place];
        }
        return nullptr;
    }
    [[nodiscard]] bool has(const std::string& name) const { return places_.count(name) > 0; }
    std::vector<KeptFont>& fonts() { return fonts_; }

  private:
    std::map<std::string, std::size_t> places_;
    std::vector<KeptFont> fonts_;
};

/// Calls `step` for each line of an index but the count.
void for_each_line(std::string_view text, const std::function<void(const std::string&)>& step) {
    std::size_t start = begins_with_an_entry(text) ? 0 : index_line_end(text, 0);
    for (std::size_t end = 0; start < text.size(); start = end) {
        end = index_line_end(text, start);
        std::string line(text.substr(start, end - start));
        if (!line.ends_with('\n')) line += '\n';
        step(line);
    }
}

/// Which files have a font name. The server takes small and capital letters for the same.
std::map<std::string, std::set<std::string>> files_by_font_name(std::string_view index) {
    std::map<std::string, std::set<std::string>> files;
    for (const IndexEntry& entry : index_entries(index))
        files[lower_case(entry.font_name)].insert(std::string(indexed_file(entry.file_name).name));
    return files;
}

/// Finds out what has come in the place of fonts.
class Successors {
  public:
    Successors(std::string_view index, const Arrivals& arrivals)
        : arrivals_(arrivals), files_(files_by_font_name(index)) {}

    void note_in(KeptFont& font) const {
        std::set<std::string> came;
        for (const trash::KeptFile& file : font.files) came.insert(file.name);
        for (const std::string& name : font.font_names()) {
            const auto found = files_.find(lower_case(name));
            if (found == files_.end()) continue;
            for (const std::string& file : found->second) {
                const bool is_new = arrivals_.count(file) > 0;
                if (is_new) came.insert(file);
                if (!is_new && file != font.file_name() && journal::can_name(file))
                    font.twins.push_back(file);
            }
        }
        add_metrics(came);
        for (const std::string& name : came) {
            if (const auto found = arrivals_.find(name); found != arrivals_.end())
                font.came.push_back({found->second, name});
        }
    }

  private:
    void add_metrics(std::set<std::string>& came) const {
        std::set<std::string> stems;
        for (const std::string& name : came) {
            if (arrivals_.count(name) > 0) stems.insert(stem_of(name));
        }
        for (const auto& [name, stamp] : arrivals_) {
            if (is_metrics(name) && stems.count(stem_of(name)) > 0) came.insert(name);
        }
    }

    const Arrivals& arrivals_;
    std::map<std::string, std::set<std::string>> files_;
};

off_t bytes_of(const trash::Manifest& manifest) {
    off_t bytes = 0;
    for (const KeptFont& font : manifest.fonts) {
        for (const trash::KeptFile& file : font.files) bytes += file.size;
    }
    return bytes;
}

}  // namespace

/// What goes to the trash with this change. A file that could not be kept there is left out with its lines.
trash::Manifest DirectoryChange::manifest() const {
    const Traffic traffic(records_);
    Sorting sorting;
    std::map<std::string, trash::KeptFile> files;
    for (const auto& [name, number] : traffic.originals) {
        struct stat info = {};
        if (own_->set_aside().look_at(std::to_string(number), info) && is_fit_for_trash(info, dir_))
            files.emplace(name, trash::KeptFile{number, info.st_size, name});
    }
    LineNumbers removed = differences_;
    for_each_line(before_, [&](const std::string& line) {
        const std::string name = trash::file_of_line(line);
        const auto difference = removed.find(line);
        const bool is_removed = difference != removed.end() && difference->second < 0;
        const bool leaves = traffic.originals.count(name) > 0;
        if (!(leaves ? files.count(name) > 0 : is_removed) || !trash::can_be_kept(line)) return;
        if (!leaves) ++difference->second;
        sorting.font_of(name).lines.push_back(line);
    });
    for (const auto& [name, file] : files) {
        KeptFont* owner =
            is_metrics(name) && !sorting.has(name) ? sorting.font_with_stem(stem_of(name)) : nullptr;
        std::vector<trash::KeptFile>& place = (owner != nullptr ? *owner : sorting.font_of(name)).files;
        place.insert(is_metrics(name) ? place.end() : place.begin(), file);
    }
    for (const auto& [line, number] : lost_scalable_lines_) {
        const std::string name = trash::file_of_line(line);
        if (sorting.has(name) && trash::can_be_kept(line))
            sorting.font_of(name).scalable_lines.push_back(line);
    }
    const Successors successors(text_, traffic.arrivals);
    for (KeptFont& font : sorting.fonts()) successors.note_in(font);
    return {trash::new_entry_name(trash_time()), action_.empty() ? new_joint_token() : action_, ::geteuid(),
            std::move(sorting.fonts()), true};
}

/// Makes the file that says, from the moment when the change is final, what of the files that were set aside
/// is for the trash.
Outcome DirectoryChange::write_manifest(const trash::Manifest& manifest) {
    if (const auto bin = TrashBin::make(dir_, own_->dir()); !bin) return about(dir_.path(), bin.failure());
    return gw::write_manifest(*own_, own_->set_aside(), OwnDirectory::MANIFEST, manifest, dir_);
}

// A change does not fail because it cannot be undone later. An index that is made anew takes no font out.
void DirectoryChange::prepare_trash() {
    if (!keeps_ || whole_ || !own_ || !journal_.is_open()) return;
    for (const auto& [name, stamp] : Traffic(records_).arrivals) came_.push_back({stamp, name});
    const trash::Manifest manifest = this->manifest();
    if (manifest.fonts.empty()) return;
    Outcome written = Failure::of_system(dir_.path(), EFBIG);
    if (bytes_of(manifest) <= trash_limits().most_bytes)
        written = with_room([&] { return write_manifest(manifest); });
    if (written) {
        kept_entry_ = manifest.entry;
        return;
    }
    tell_unless_done(own_->forget_trash());
    tell(written.failure().with(Sequel::NOT_KEPT));
}

Outcome DirectoryChange::bring_back(const Directory& entry, const std::string& entry_name,
                                    const trash::KeptFile& file) {
    const std::string path = dir_.path_of(file.name);
    if (!own_) return about(path, *broken_);
    const std::string number = std::to_string(file.number);
    struct stat info = {};
    if (!entry.look_at(number, info) || info.st_size != file.size || !is_fit_for_trash(info, dir_))
        return Failure{path, Reason::NOT_IN_TRASH};
    if (file.name.find('/') != std::string::npos) {
        if (Outcome made = make_metrics_dir(); !made) return made;
    }
    if (Outcome allowed = may_be_replaced(file.name); !allowed) return allowed;
    const journal::Back record = {FileIdentity::of(info), file.number, entry_name, file.name};
    return move_in(entry, number, file.name, record, [] { return true; });
}

std::optional<TrashBin> DirectoryChange::trash() const {
    return own_ ? TrashBin::find(dir_, own_->dir()) : std::nullopt;
}

bool DirectoryChange::give_way() {
    const std::optional<TrashBin> bin = trash();
    return bin && bin->give_way(entries_in_use_);
}

}  // namespace gw
