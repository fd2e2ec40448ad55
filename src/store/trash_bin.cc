// SPDX-License-Identifier: MIT
#include "store/trash_bin.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#include "core/file_calls.h"
#include "core/file_writer.h"
#include "core/rights.h"
#include "fontfiles/index_text.h"
#include "store/index_file.h"
#include "store/trash_policy.h"

namespace gw {

namespace {

constexpr const char* NEW_MANIFEST = "manifest.new";

/// A clock that was set back makes no entry old.
bool is_too_old(const std::string& entry) {
    const std::optional<std::time_t> made = trash::time_of_entry(entry);
    const std::time_t now = trash_time();
    return !made || (*made < now && now - *made > trash_limits().longest);
}

bool is_before(const std::string& one, const std::string& other) {
    return std::pair(trash::time_of_entry(one), one) < std::pair(trash::time_of_entry(other), other);
}

/// Whether the index lacks any of these lines.
bool misses_a_line(const Directory& fonts, const std::vector<std::string>& lines) {
    LineNumbers wanted;
    for (const std::string& line : lines) wanted[line] = 1;
    struct stat info = {};
    const Result<std::string> text = read_index(fonts, info);
    if (!text) return true;
    const LineNumbers there = occurrences(*text, wanted);
    return std::any_of(there.begin(), there.end(), [](const auto& line) { return line.second == 0; });
}

std::optional<trash::Manifest> manifest_in(const Directory& where, const Directory& fonts) {
    struct stat info = {};
    if (!where.look_at(TrashBin::MANIFEST, info) || info.st_size > trash::MOST_BYTES) return std::nullopt;
    const Result<std::string> text = read_trusted(where, TrashBin::MANIFEST, fonts.info());
    return text ? trash::parse(*text) : std::nullopt;
}

}  // namespace

bool is_fit_for_trash(const struct stat& info, const Directory& fonts) {
    return S_ISREG(info.st_mode) && info.st_nlink == 1 && is_trusted(info, fonts.info());
}

std::optional<TrashBin> TrashBin::find(const Directory& fonts, const Directory& own) {
    if (!own.has(NAME)) return std::nullopt;
    Result<Directory> dir = trusted_below(own, NAME, fonts);
    if (!dir) return std::nullopt;
    return TrashBin(fonts, std::move(*dir));
}

Result<TrashBin> TrashBin::make(const Directory& fonts, const Directory& own) {
    Result<Directory> dir = made_below(own, NAME, fonts);
    if (!dir) return dir.failure();
    return TrashBin(fonts, std::move(*dir));
}

std::vector<std::string> TrashBin::entries() const {
    std::vector<std::string> names = dir_.names();
    std::erase_if(names, [](const std::string& name) { return !trash::time_of_entry(name); });
    std::sort(names.begin(), names.end(), is_before);
    return names;
}

Result<Directory> TrashBin::entry(const std::string& name) const {
    return trusted_below(dir_, name, *fonts_);
}

bool TrashBin::is_there(const Directory& entry, const trash::KeptFont& font) const {
    if (font.files.empty()) return misses_a_line(*fonts_, font.lines);
    return std::all_of(font.files.begin(), font.files.end(), [&](const trash::KeptFile& file) {
        struct stat info = {};
        return entry.look_at(std::to_string(file.number), info) && info.st_size == file.size &&
               is_fit_for_trash(info, *fonts_);
    });
}

std::optional<trash::Manifest> TrashBin::offered(const std::string& name) const {
    if (is_too_old(name)) return std::nullopt;
    const Result<Directory> dir = entry(name);
    if (!dir) return std::nullopt;
    std::optional<trash::Manifest> manifest = manifest_in(*dir, *fonts_);
    if (!manifest || manifest->entry != name) return std::nullopt;
    std::erase_if(manifest->fonts, [&](const trash::KeptFont& font) { return !is_there(*dir, font); });
    if (manifest->fonts.empty()) return std::nullopt;
    return manifest;
}

// Without its manifest it is not offered, whatever becomes of the rest.
Outcome TrashBin::remove(const std::string& name) const {
    const FileCalls& calls = file_calls();
    const Result<Directory> dir = entry(name);
    if (!dir) return dir.failure();
    const auto remove_file = [&](const char* file) {
        return calls.unlink(dir->fd(), file, 0) == 0 || errno == ENOENT;
    };
    if (!remove_file(MANIFEST)) return Failure::of_system(fonts_->path(), errno);
    for (const std::string& file : dir->names()) {
        if (!remove_file(file.c_str())) return Failure::of_system(fonts_->path(), errno);
    }
    if (calls.unlink(dir_.fd(), name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT) return done();
    return Failure::of_system(fonts_->path(), errno);
}

// A font is not offered any more when one of its files has gone, whatever becomes of the rest.
Outcome TrashBin::remove_fonts(const OwnDirectory& own, const std::string& name,
                               const std::set<std::string>& file_names) const {
    std::optional<trash::Manifest> manifest = offered(name);
    const Result<Directory> dir = entry(name);
    if (!manifest || !dir) return Failure{fonts_->path(), Reason::NOT_IN_TRASH};
    bool has_files = true;
    std::vector<trash::KeptFont> going;
    for (const trash::KeptFont& font : manifest->fonts) {
        if (file_names.count(font.file_name()) > 0) going.push_back(font);
    }
    if (going.empty()) return Failure{fonts_->path(), Reason::NOT_IN_TRASH};
    if (going.size() == manifest->fonts.size()) return remove(name);
    for (const trash::KeptFont& font : going) {
        has_files = has_files && !font.files.empty();
        std::erase(manifest->fonts, font);
        for (const trash::KeptFile& file : font.files) {
            if (file_calls().unlink(dir->fd(), std::to_string(file.number).c_str(), 0) != 0 &&
                errno != ENOENT)
                return Failure::of_system(fonts_->path(), errno);
        }
    }
    Outcome written = write_manifest(own, *dir, NEW_MANIFEST, *manifest, *fonts_);
    if (written && file_calls().rename(dir->fd(), NEW_MANIFEST, dir->fd(), MANIFEST) != 0)
        written = Failure::of_system(fonts_->path(), errno);
    // On a full disk the old one is as good, unless it offers lines without a file.
    return has_files ? done() : written;
}

namespace {

/// What of an entry that is not offered nobody wants: manifests, and the metrics of fonts whose own file is
/// gone. A run that was killed while it removed a font has left these.
std::set<std::string> worthless_in(const Directory& entry, const Directory& fonts,
                                   const std::vector<std::string>& files) {
    std::set<std::string> worthless = {TrashBin::MANIFEST, NEW_MANIFEST};
    const std::optional<trash::Manifest> manifest = manifest_in(entry, fonts);
    if (!manifest) return worthless;
    for (const trash::KeptFont& font : manifest->fonts) {
        if (font.files.empty()) continue;
        const std::string first = std::to_string(font.files.front().number);
        if (std::find(files.begin(), files.end(), first) != files.end()) continue;
        for (const trash::KeptFile& file : font.files) worthless.insert(std::to_string(file.number));
    }
    return worthless;
}

}  // namespace

/// Whether nothing of the entry can ever come back.
bool TrashBin::is_done_with(const std::string& name) const {
    if (is_too_old(name)) return true;
    const Result<Directory> dir = entry(name);
    if (!dir) return false;
    const std::vector<std::string> files = dir->names();
    if (std::find(files.begin(), files.end(), MANIFEST) == files.end()) return true;
    if (offered(name)) return false;
    const std::set<std::string> worthless = worthless_in(*dir, *fonts_, files);
    return std::all_of(files.begin(), files.end(),
                       [&](const std::string& file) { return worthless.count(file) > 0; });
}

void TrashBin::sweep() const {
    for (const std::string& name : entries()) {
        if (is_done_with(name)) (void)remove(name);
    }
}

off_t TrashBin::size_of(const std::string& name) const {
    const Result<Directory> dir = entry(name);
    off_t size = 0;
    if (!dir) return size;
    for (const std::string& file : dir->names()) {
        struct stat info = {};
        if (dir->look_at(file, info)) size += info.st_size;
    }
    return size;
}

void TrashBin::prune() const {
    sweep();
    const std::vector<std::string> names = entries();
    off_t left = trash_limits().most_bytes;
    std::size_t number = 0;
    bool has_room = true;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        const off_t size = size_of(*name);
        has_room = has_room && size <= left && number < trash_limits().most_entries;
        if (!has_room) (void)remove(*name);
        left -= size;
        ++number;
    }
}

bool TrashBin::give_way(const std::vector<std::string>& but) const {
    const std::vector<std::string> names = entries();
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return std::find(but.begin(), but.end(), name) == but.end() && remove(name);
    });
}

/// Moves the files of the manifest, and the manifest at last. A file that is missing was moved already.
Outcome TrashBin::take_in(const Directory& set_aside, const trash::Manifest& manifest) const {
    const Result<Directory> dir = made_below(dir_, manifest.entry, *fonts_);
    if (!dir) return Failure::of_system(fonts_->path(), dir.failure().error);
    if (dir->has(MANIFEST)) return Failure::of_system(fonts_->path(), EEXIST);
    const auto move = [&](const char* name) {
        const bool moved = file_calls().rename(set_aside.fd(), name, dir->fd(), name) == 0;
        return moved || errno == ENOENT ? done() : Outcome(Failure::of_system(fonts_->path(), errno));
    };
    Outcome first_failure;
    for (const trash::KeptFont& font : manifest.fonts) {
        for (const trash::KeptFile& file : font.files) {
            const Outcome moved = move(std::to_string(file.number).c_str());
            if (!moved && first_failure) first_failure = moved;
        }
    }
    Outcome moved = move(MANIFEST);
    return first_failure ? moved : first_failure;
}

void TrashBin::keep_what_was_set_aside(const Directory& fonts, const OwnDirectory& own) {
    if (!own.set_aside().has(MANIFEST)) return;
    const std::optional<trash::Manifest> manifest = manifest_in(own.set_aside(), fonts);
    if (!manifest || !manifest->is_whole) return;
    const Result<TrashBin> bin = make(fonts, own.dir());
    Outcome kept = bin ? bin->take_in(own.set_aside(), *manifest)
                       : Outcome(Failure::of_system(fonts.path(), bin.failure().error));
    tell_unless_done(kept.with(Sequel::NOT_KEPT));
    if (bin) bin->prune();
}

Outcome write_manifest(const OwnDirectory& own, const Directory& where, const std::string& name,
                       const trash::Manifest& manifest, const Directory& fonts) {
    const std::string text = trash::text_of(manifest);
    if (text.size() > static_cast<std::size_t>(trash::MOST_BYTES))
        return Failure::of_system(fonts.path(), EFBIG);
    Result<Descriptor> fd = own.create(where, name, fonts.path());
    if (!fd) return fd.failure();
    own.lend_to_group(fd->get());
    FileWriter file(std::move(*fd), fonts.path());
    file.set_owner({runs_as_superuser() ? fonts.info().st_uid : ::geteuid(), fonts.info().st_gid});
    file.write(text);
    return file.finish();
}

Result<Directory> trash_entry_of(const Directory& fonts, const Directory& own, const std::string& name) {
    const Result<Directory> trash = trusted_below(own, TrashBin::NAME, fonts);
    if (!trash) return trash.failure();
    return trusted_below(*trash, name, fonts);
}

}  // namespace gw
