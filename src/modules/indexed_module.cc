// SPDX-License-Identifier: MIT
#include "modules/indexed_module.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/font_policy.h"
#include "core/gw_buf_file.h"
#include "core/text.h"
#include "modules/font_installation.h"
#include "modules/index_access.h"
#include "modules/source_fonts.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

constexpr int TABLE_TOKENS = 8;
constexpr int TABLE_CHARS = 32;
constexpr mode_t SCRATCH_MODE = 0744;
// Nobody else can open it, and hold its lock. mkfontdir is ours.
constexpr mode_t PRIVATE_MODE = 0700;

}  // namespace

IndexedModule::IndexedModule(int type, std::initializer_list<Extension> extensions,
                             std::pair<const char*, const char*> suffix_patterns, const char* scratch,
                             std::initializer_list<Extension> todays)
    : AnsweringModule(type),
      file_names(TABLE_TOKENS, TABLE_CHARS, EXT_UNKNOWN),
      all_file_names(TABLE_TOKENS, TABLE_CHARS, EXT_UNKNOWN),
      todays_extensions(todays),
      suffixes(suffix_patterns),
      first_suffix(suffix_patterns.first),
      second_suffix(suffix_patterns.second),
      scratch_dir(scratch) {
    for (const auto& [id, extension] : extensions) {
        file_names.add_token(id, extension);
        all_file_names.add_token(id, extension);
    }
    for (const auto& [id, extension] : todays) all_file_names.add_token(id, extension);
}

// Kept: gzipped bitmap fonts are not seen.
bool IndexedModule::takes_todays_forms() const {
    return !todays_extensions.empty() && font_policy().takes_todays_formats();
}

bool IndexedModule::takes(const char* file_name) {
    return first_suffix.string_match(file_name) != 0 || second_suffix.string_match(file_name) != 0 ||
           (takes_todays_forms() && all_file_names.get_id_of_end(file_name) != EXT_UNKNOWN);
}

std::string IndexedModule::visible_name(const GW_FILE_SPEC& spec, const GW_FPE& fpe) const {
    return fpe.index_name(spec);
}

std::unique_ptr<GWFont> IndexedModule::make_font_of(FontPlace& place, const char* file_name) const {
    auto font = std::make_unique<GWFont>(static_cast<GWFont::GW_FONT_TYPE>(get_type()));
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(
        new GW_FILE_SPEC(file_name, place.seen().path().c_str(), FILE_TYPE_UNDETERMINED, EXT_UNKNOWN));
    font->set_files_in(place, std::move(files));
    return font;
}

std::unique_ptr<GWFont> IndexedModule::make_font(GW_DIR* dir, const GW_STRING* file_name,
                                                 const GW_STRING* font_name) const {
    FontPlace place(dir->get_path());
    std::unique_ptr<GWFont> font = make_font_of(place, file_name->get_str());
    font->set_xlfd_name(font_name->get_str());
    return font;
}

Outcome IndexedModule::link_into_new_directory(const std::string& tmp_dir, const GW_FSPEC_LIST& files) {
    if (::mkdir(tmp_dir.c_str(), SCRATCH_MODE) != 0) return Failure::of_system(tmp_dir, errno);
    for (const GW_FILE_SPEC* spec : files) {
        const std::string link = tmp_dir + '/' + spec->get_name();
        if (::symlink(spec->get_path(), link.c_str()) != 0) return Failure::of_system(link, errno);
    }
    return done();
}

int IndexedModule::mkdir_and_slink(const char* tmp_dir, const GW_FSPEC_LIST* files) {
    return link_into_new_directory(tmp_dir, *files) ? 0 : 1;
}

void IndexedModule::list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) {
    dir->get_file_spec_list(out, recursive, takes_todays_forms() ? &all_file_names : &file_names);
}

void IndexedModule::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) {
    list_indexed_files(out, *fpe, {suffixes.first, suffixes.second});
    if (!takes_todays_forms()) return;
    for (const auto& [id, extension] : todays_extensions)
        list_indexed_files(out, *fpe, {(std::string(extension) + '$').c_str()});
}

void IndexedModule::list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) {
    GW_FSPEC_LIST files;
    const ElementsOwner owner(files);
    list_installed_font_file_names(files, fpe);
    append_font_names(out, files, *fpe);
}

// With `files` (fonts found below `dir`) the font's directory is the one that holds its file, otherwise it is
// `dir`.
void IndexedModule::append_indexed_fonts(GW_LIST<GWFont>& out, GW_DIR& dir, GW_FONTDIR_FILE& index,
                                         const GW_FSPEC_LIST* files) {
    std::unordered_map<std::string_view, const char*> homes;
    if (files != nullptr) {
        for (const GW_FILE_SPEC* spec : *files) homes.try_emplace(spec->get_name(), spec->get_dir());
    }
    FontPlaces places;
    const auto contents = index.contents();
    std::string file_name;
    std::string font_name;
    for (const IndexEntryView& entry : contents->entries) {
        file_name = entry.file_name;
        if (!takes(file_name.c_str()) || !dir.has_chosen(file_name)) continue;
        const auto home = homes.find(entry.file_name);
        FontPlace& place =
            places.at(home != homes.end() ? with_trailing_slash(home->second) : dir.get_path());
        std::unique_ptr<GWFont> font = make_font_of(place, file_name.c_str());
        font_name = entry.font_name;
        font->set_xlfd_name(font_name.c_str());
        out.append(font.release());
    }
}

bool IndexedModule::make_scratch_index(const std::string& scratch, const GW_FSPEC_LIST& files) {
    if (!tell_unless_done(hold_scratch_dir(scratch, PRIVATE_MODE).with(Sequel::NOT_USED))) return false;
    // The message names the operation instead of the file.
    for (const GW_FILE_SPEC* spec : files) {
        const Outcome linked = link_in_scratch_dir(scratch, spec->get_name(), spec->get_path());
        if (linked) continue;
        tell(Failure::of_system("make_font_list", linked.failure().error));
        break;
    }
    return tell_unless_done(run_command("mkfontdir %s;", {scratch}, LONG_WORK).with(Sequel::NOT_USED));
}

/// The fonts of the files that the index does not list, as the tools name them.
void IndexedModule::append_named_fonts(GW_LIST<GWFont>& out, const GW_DIR& dir, GW_FSPEC_LIST& files,
                                       GW_FONTDIR_FILE& index) {
    const auto contents = index.contents();
    std::unordered_set<std::string_view> listed;
    for (const IndexEntryView& entry : contents->entries) listed.insert(entry.file_name);
    FontPlaces places;
    std::vector<GWFont*> fonts;
    for (const GW_FILE_SPEC* spec : files) {
        // Those of subdirectories have nothing to do with this index.
        if (listed.contains(spec->get_name()) && spec->is_in_directory(dir.get_path())) continue;
        std::unique_ptr<GWFont> font = make_font_of(places.at(spec->get_dir()), spec->get_name());
        font->set_xlfd_name("");
        fonts.push_back(font.release());
        out.append(fonts.back());
    }
    name_source_fonts(fonts);
}

void IndexedModule::make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) {
    GW_FSPEC_LIST found;
    const ElementsOwner found_owner(found);
    list_font_file_names(found, dir, recursive);
    GW_FSPEC_LIST files;
    const ElementsOwner files_owner(files);
    found.separate_by_file_type(files, FILE_TYPE_REGULAR);

    GW_FONTDIR_FILE index(dir->get_path(), FILE_TYPE_REGULAR);
    const GW_FONTDIR_FILE::Reading once(index);
    if (index.exist() != 0) append_indexed_fonts(out, *dir, index, nullptr);
    if (takes_todays_forms()) return append_named_fonts(out, *dir, files, index);
    if (index.exist() != 0) return;
    if (files.is_empty() && font_policy().takes_todays_formats()) return;
    const std::string scratch = scratch_path(scratch_dir);
    if (make_scratch_index(scratch, files)) {
        GW_FONTDIR_FILE scratch_index(scratch.c_str(), FILE_TYPE_REGULAR);
        append_indexed_fonts(out, *dir, scratch_index, &files);
    }
    drop_scratch_dir(scratch);
}

void IndexedModule::make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) {
    GW_DIR dir(fpe->get_element());
    append_indexed_fonts(out, dir, fpe->get_fontdir_file(), nullptr);
}

Outcome IndexedModule::install(GWFont& font, GW_FPE& fpe) {
    const auto copy = [](FontInstallation& installation, const DirectoryChange&) {
        return installation.copy_files<GW_BUF_FILE>();
    };
    return install_in_change(font, fpe, copy).with(Sequel::FONT_LEFT_OUT);
}

Outcome IndexedModule::make_visible(GWFont& font, GW_FPE& fpe) {
    const GW_FILE_SPEC* first = first_file(font);
    if (first == nullptr) return done();
    return enter_in_index(font, fpe, visible_name(*first, fpe)).with(Sequel::FONT_LEFT_OUT);
}

Outcome IndexedModule::remove(GWFont& font) {
    return remove_files_and_entry(font).with(Sequel::FONT_STAYS);
}

Outcome IndexedModule::can_install(GWFont& font) const {
    return can_be_indexed(font).with(Sequel::FONT_LEFT_OUT);
}

}  // namespace gw
