// SPDX-License-Identifier: MIT
#include "modules/gw_t1_fsm.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/font_policy.h"
#include "core/gw_buf_file.h"
#include "core/seen_directory.h"
#include "core/text.h"
#include "model/font_place.h"
#include "modules/font_installation.h"
#include "modules/font_modules.h"
#include "modules/gw_t1_buf_file.h"
#include "modules/gw_t1_font_file.h"
#include "modules/index_access.h"
#include "modules/source_fonts.h"

namespace {

constexpr int FILE_NAME_TOKENS = 4;
constexpr int FILE_NAME_CHARS = 32;
constexpr int HEADER_KEYS = 10;
constexpr int HEADER_KEY_CHARS = 256;

/// The length of the file's extension with its dot, if it is one of a Type 1 font; else 0.
std::size_t extension_length(std::string_view name) {
    const std::string end = gw::lower_case(name.substr(name.size() - std::min<std::size_t>(name.size(), 4)));
    return name.size() > end.size() && (end == ".pfa" || end == ".pfb" || end == ".afm") ? end.size() : 0;
}

/// The part of the file's name that all files of its font have in common.
std::string prefix_of(std::string_view name) {
    const std::size_t extension = gw::font_policy().takes_any_file_name() ? extension_length(name) : 0;
    if (extension > 0) return std::string(name.substr(0, name.size() - extension));
    return std::string(name.substr(0, name.find('.')));
}

const GW_FILE_SPEC* append_spec(GW_FSPEC_LIST& out, const std::string& name, const gw::SeenDirectory& dir,
                                int file_type, int ext_type) {
    auto spec = std::make_unique<GW_FILE_SPEC>(name.c_str(), dir.path().c_str(), file_type, ext_type);
    const GW_FILE_SPEC* appended = spec.get();
    out.append(spec.release());
    return appended;
}

/// Appends PREFIX.pfb, PREFIX.pfa and PREFIX.afm, each if `dir` has it. Returns the outline file, or null.
const GW_FILE_SPEC* append_outline_and_metrics(GW_FSPEC_LIST& out, gw::SeenDirectory& dir,
                                               const std::string& prefix) {
    const auto append = [&](const char* extension, int ext_type) -> const GW_FILE_SPEC* {
        std::string name = prefix + extension;
        if (dir.has(name)) return append_spec(out, name, dir, gw::FILE_TYPE_REGULAR, ext_type);
        if (!gw::font_policy().takes_any_file_name()) return nullptr;
        std::transform(name.end() - 4, name.end(), name.end() - 4, ::toupper);
        return dir.has(name) ? append_spec(out, name, dir, gw::FILE_TYPE_REGULAR, ext_type) : nullptr;
    };
    const GW_FILE_SPEC* pfb = append(".pfb", gw::EXT_PFB);
    const GW_FILE_SPEC* pfa = append(".pfa", gw::EXT_PFA);
    append(".afm", gw::EXT_AFM);
    return pfa != nullptr ? pfa : pfb;
}

/// Appends "afm/PREFIX" or else "afm/PREFIX.afm" if it exists.
void append_metrics_below(GW_FSPEC_LIST& out, gw::SeenDirectory& dir, const std::string& prefix) {
    // Kept: metrics may have no extension in their subdirectory.
    for (const std::string& name : {prefix, prefix + ".afm"}) {
        if (!dir.below("afm").has(name)) continue;
        append_spec(out, "afm/" + name, dir, gw::FILE_TYPE_UNDETERMINED, gw::EXT_UNKNOWN);
        return;
    }
}

/// Appends all files of the font of the file NAME. Returns the outline file, or null.
const GW_FILE_SPEC* append_files_of_font(GW_FSPEC_LIST& out, gw::SeenDirectory& dir, std::string_view name) {
    const std::string prefix = prefix_of(name);
    const GW_FILE_SPEC* outline = append_outline_and_metrics(out, dir, prefix);
    if (dir.has("afm")) append_metrics_below(out, dir, prefix);
    return outline;
}

/// The names of the Type 1 files that an index lists, as parts of it.
std::vector<std::string_view> indexed_type1_names(const GW_FONTDIR_FILE::Contents& index) {
    std::vector<std::string_view> names = gw::indexed_names(index, {".pfb$", ".pfa$", ".afm$"});
    // Kept: an outline is listed once for each line of the index.
    if (!gw::font_policy().lists_an_outline_once()) return names;
    std::unordered_set<std::string_view> listed;
    std::erase_if(names, [&listed](std::string_view name) { return !listed.insert(name).second; });
    return names;
}

/// The working list of `build_font_list`: the files that belong to no font yet, in list order.
class UnclaimedFiles {
  public:
    explicit UnclaimedFiles(const GW_FSPEC_LIST& files) {
        for (const GW_FILE_SPEC* spec : files) order_.push_back(spec);
        for (const GW_FILE_SPEC* spec : order_) names_.insert(spec->get_name());
    }
    [[nodiscard]] const GW_FILE_SPEC* first() {
        while (next_ < order_.size() && !names_.contains(order_[next_]->get_name())) ++next_;
        return next_ < order_.size() ? order_[next_] : nullptr;
    }
    /// Removes the font's files; false when none of them was in the list.
    bool claim(const GW_FSPEC_LIST& font_files) {
        std::size_t claimed = 0;
        for (const GW_FILE_SPEC* spec : font_files) claimed += names_.erase(spec->get_name());
        return claimed > 0;
    }
    [[nodiscard]] bool contains(const GW_FILE_SPEC* spec) const { return names_.contains(spec->get_name()); }

  private:
    std::vector<const GW_FILE_SPEC*> order_;
    std::unordered_set<std::string_view> names_;
    std::size_t next_ = 0;
};

/// Fails when the element has an outline file with the font's prefix that belongs to another font. The two
/// fonts would share their metrics, and deleting one would delete the files of both.
gw::Outcome prefix_is_free(GWFont& font, GW_FPE& fpe, const gw::DirectoryChange& change) {
    const GW_FILE_SPEC& first = *gw::first_file(font);
    if (first.is_in_directory(fpe.get_element())) return gw::done();
    const GW_FILE_SPEC copy(font.name_in_copy(first).c_str(), fpe.get_element(), gw::FILE_TYPE_REGULAR,
                            gw::EXT_UNKNOWN);
    const std::string prefix = GW_T1_FSM::get_matching_file_spec_prefix(&copy);
    for (const char* extension : {".pfb", ".pfa"}) {
        const GW_FILE_SPEC outline((prefix + extension).c_str(), fpe.get_element(), gw::FILE_TYPE_REGULAR,
                                   gw::EXT_UNKNOWN);
        // A file of the font itself is compared when it is copied: it may be the same.
        const GW_FSPEC_LIST& files = *font.get_font_file_list();
        const bool own = std::any_of(files.begin(), files.end(), [&](const GW_FILE_SPEC* spec) {
            return font.name_in_copy(*spec) == outline.get_name();
        });
        if (own || !change.will_have(outline.get_name())) continue;
        if (!gw::is_file_of_another(outline.get_name(), font, change)) continue;
        return gw::Failure{outline.get_path(), gw::Reason::FILE_OF_ANOTHER_FONT};
    }
    return gw::done();
}

gw::Outcome copy_outlines_and_metrics(gw::FontInstallation& installation, GWFont& font, GW_FPE& fpe,
                                      const gw::DirectoryChange& change) {
    if (gw::Outcome free = prefix_is_free(font, fpe, change); !free) return free;
    installation.make_afm_dir();
    return gw::font_policy().copies_outlines_exactly() ? installation.copy_files<GW_BUF_FILE>()
                                                       : installation.copy_files<GW_T1_BUF_FILE>();
}

/// All names that an index has, by file.
class NamesByFile {
  public:
    explicit NamesByFile(GW_FPE& fpe)
        : files_(gw::listed_files(fpe, [](std::string_view) { return true; })) {}
    /// Those of one file, which are taken out.
    [[nodiscard]] std::vector<gw::IndexName> take(std::string_view file) {
        // Mostly it is asked for in the order of the index.
        if (next_ < files_.size() && files_[next_].name == file) return std::move(files_[next_++].names);
        const auto found = places().find(file);
        if (found == places().end()) return {};
        next_ = found->second + 1;
        return std::move(files_[found->second].names);
    }

  private:
    const std::unordered_map<std::string_view, std::size_t>& places() {
        if (places_.empty()) {
            places_.reserve(files_.size());
            for (std::size_t i = 0; i < files_.size(); ++i) places_.emplace(files_[i].name, i);
        }
        return places_;
    }

    std::vector<gw::ListedFile> files_;
    std::size_t next_ = 0;
    std::unordered_map<std::string_view, std::size_t> places_;
};

}  // namespace

GW_FSM_BASE& gw::type1_module() {
    static GW_T1_FSM module;
    return module;
}

GW_T1_FSM::GW_T1_FSM()
    : AnsweringModule(GWFont::TYPE1_FONT),
      file_names(FILE_NAME_TOKENS, FILE_NAME_CHARS, gw::EXT_UNKNOWN),
      header_keys(HEADER_KEYS, HEADER_KEY_CHARS, GW_T1_FONT_FILE::UNKNOWN_KEY) {
    file_names.add_token(gw::EXT_PFB, ".pfb");
    file_names.add_token(gw::EXT_PFA, ".pfa");

    header_keys.add_token(GW_T1_FONT_FILE::FAMILY_NAME, "FamilyName");
    header_keys.add_token(GW_T1_FONT_FILE::WEIGHT, "Weight");
    header_keys.add_token(GW_T1_FONT_FILE::FULL_NAME, "FullName");
    header_keys.add_token(GW_T1_FONT_FILE::ENCODING, "Encoding");
    header_keys.add_token(GW_T1_FONT_FILE::ITALIC_ANGLE, "ItalicAngle");
    header_keys.add_token(GW_T1_FONT_FILE::IS_FIXED_PITCH, "isFixedPitch");
    header_keys.add_token(GW_T1_FONT_FILE::COPYRIGHT, "Copyright");
    header_keys.add_token(GW_T1_FONT_FILE::NOTICE, "Notice");
}

void GW_T1_FSM::list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) {
    dir->get_file_spec_list(out, recursive, &file_names);
}

void GW_T1_FSM::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) {
    const auto index = fpe->get_fontdir_file().contents();
    gw::append_specs(out, indexed_type1_names(*index), *fpe);
}

void GW_T1_FSM::list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) {
    GW_FSPEC_LIST files;
    const gw::ElementsOwner owner(files);
    list_installed_font_file_names(files, fpe);
    gw::append_font_names(out, files, *fpe);
}

void GW_T1_FSM::make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) {
    GW_FSPEC_LIST found;
    const gw::ElementsOwner found_owner(found);
    list_font_file_names(found, dir, recursive);
    GW_FSPEC_LIST files;
    const gw::ElementsOwner files_owner(files);
    found.separate_by_file_type(files, gw::FILE_TYPE_REGULAR);
    GW_FSPEC_LIST working;
    for (GW_FILE_SPEC* spec : files) working.append(spec);
    GW_LIST<GWFont> fonts;
    build_font_list(fonts, working);
    for (GWFont* font : fonts) out.append(font);
    if (gw::font_policy().enters_all_names()) gw::name_source_fonts({fonts.begin(), fonts.end()});
}

void GW_T1_FSM::make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) {
    const GW_FONTDIR_FILE::Reading once(fpe->get_fontdir_file());
    const auto index = fpe->get_fontdir_file().contents();
    const std::vector<std::string_view> files = indexed_type1_names(*index);
    if (files.empty()) return;
    std::optional<NamesByFile> all_names;
    std::optional<gw::FontNames> names;
    if (gw::font_policy().enters_all_names()) {
        all_names.emplace(*fpe);
    } else {
        names.emplace(*index);
    }
    gw::FontPlace place(gw::with_trailing_slash(fpe->get_element()));
    for (const std::string_view file : files) {
        auto font_files = std::make_unique<GW_FSPEC_LIST>();
        append_files_of_font(*font_files, place.seen(), file);
        auto font = std::make_unique<GWFont>(GWFont::TYPE1_FONT);
        font->set_files_in(place, std::move(font_files));
        if (const auto name = names ? names->of(file) : std::nullopt)
            font->set_xlfd_name(std::string(*name).c_str());
        if (all_names) font->set_index_names(all_names->take(file));
        out.append(font.release());
    }
}

gw::Outcome GW_T1_FSM::install(GWFont& font, GW_FPE& fpe) {
    const auto copy = [&](gw::FontInstallation& installation, const gw::DirectoryChange& change) {
        return copy_outlines_and_metrics(installation, font, fpe, change);
    };
    return gw::install_in_change(font, fpe, copy).with(gw::Sequel::FONT_LEFT_OUT);
}

gw::Outcome GW_T1_FSM::make_visible(GWFont& font, GW_FPE& fpe) {
    const GW_FILE_SPEC* first = gw::first_file(font);
    if (first == nullptr) return gw::done();
    return gw::enter_in_index(font, fpe, fpe.index_name(*first)).with(gw::Sequel::FONT_LEFT_OUT);
}

gw::Outcome GW_T1_FSM::remove(GWFont& font) {
    std::function<void()> rebuild_resources;
    if (gw::first_file(font) != nullptr) {
        const GW_FSPEC_LIST& files = *font.get_font_file_list();
        const std::string dir = files.get_elem_at_pos(files.get_count())->get_dir();
        rebuild_resources = [dir] { GW_DIR(dir.c_str()).make_upr_file(0, nullptr); };
    }
    return gw::remove_files_and_entry(font, rebuild_resources).with(gw::Sequel::FONT_STAYS);
}

gw::Outcome GW_T1_FSM::can_install(GWFont& font) const {
    return gw::can_be_indexed(font).with(gw::Sequel::FONT_LEFT_OUT);
}

std::string GW_T1_FSM::get_matching_file_spec_prefix(const GW_FILE_SPEC* spec) {
    return prefix_of(spec->get_name());
}

const GW_FILE_SPEC* GW_T1_FSM::get_dir_aux_file_spec_list(GW_FSPEC_LIST& out, const GW_DIR* dir,
                                                          const char* prefix) {
    gw::SeenDirectory seen(dir->get_path());
    return append_outline_and_metrics(out, seen, prefix);
}

int GW_T1_FSM::get_afm_aux_file_spec_list(GW_FSPEC_LIST& out, const char* dir, const char* prefix) {
    gw::SeenDirectory seen(gw::with_trailing_slash(dir));
    append_metrics_below(out, seen, prefix);
    return 1;
}

const GW_FILE_SPEC* GW_T1_FSM::get_aux_fspec_list(GW_FSPEC_LIST* out, const GW_FILE_SPEC* spec) {
    gw::SeenDirectory seen(spec->get_dir());
    return append_files_of_font(*out, seen, spec->get_name());
}

std::unique_ptr<GWFont> GW_T1_FSM::make_font(gw::FontPlace& place, const GW_FILE_SPEC* outline,
                                             std::unique_ptr<GW_FSPEC_LIST> files) {
    auto font = std::make_unique<GWFont>(GWFont::TYPE1_FONT);
    GW_T1_FONT_FILE reader(outline);
    reader.set_skip_comment_flag(1);
    reader.set_token_table(&header_keys);
    reader.set_foundry_file(&foundries);
    // The header first: what the open file tells of itself need not be asked again.
    reader.set_font_info(*font, place.seen().open_to_read(outline->get_name()));
    font->set_files_in(place, std::move(files));
    return font;
}

void GW_T1_FSM::build_font_list(GW_LIST<GWFont>& out, GW_FSPEC_LIST& files) {
    UnclaimedFiles unclaimed(files);
    gw::FontPlaces places;
    bool shrinking = true;
    while (shrinking) {
        const GW_FILE_SPEC* file = unclaimed.first();
        if (file == nullptr) break;
        gw::FontPlace& place = places.at(file->get_dir());
        auto font_files = std::make_unique<GW_FSPEC_LIST>();
        const GW_FILE_SPEC* outline = append_files_of_font(*font_files, place.seen(), file->get_name());
        shrinking = unclaimed.claim(*font_files);
        if (outline != nullptr) {
            out.append(make_font(place, outline, std::move(font_files)).release());
        } else {
            gw::delete_elements(*font_files);
        }
    }
    GW_FSPEC_LIST left;
    for (GW_FILE_SPEC* spec : files) {
        if (unclaimed.contains(spec)) left.append(spec);
    }
    files.clear();
    for (GW_FILE_SPEC* spec : left) files.append(spec);
}
