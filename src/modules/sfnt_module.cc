// SPDX-License-Identifier: MIT
#include "modules/sfnt_module.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "core/font_policy.h"
#include "core/gw_buf_file.h"
#include "model/font_place.h"
#include "modules/font_installation.h"
#include "modules/font_modules.h"
#include "modules/index_access.h"
#include "modules/outline_conversion.h"
#include "modules/source_fonts.h"

namespace gw {

namespace {

constexpr int TABLE_TOKENS = 4;
constexpr int TABLE_CHARS = 32;

/// A converted file in the scratch space, as long as it is needed.
class ConvertedFile {
  public:
    explicit ConvertedFile(std::string path) : path_(std::move(path)) {}
    ~ConvertedFile() {
        std::error_code gone;
        std::filesystem::remove(path_, gone);
    }
    ConvertedFile(const ConvertedFile&) = delete;
    ConvertedFile& operator=(const ConvertedFile&) = delete;

    [[nodiscard]] GW_FILE_SPEC spec() const {
        const std::size_t slash = path_.rfind('/');
        return {path_.substr(slash + 1).c_str(), path_.substr(0, slash).c_str(), FILE_TYPE_REGULAR,
                EXT_UNKNOWN};
    }

  private:
    std::string path_;
};

Outcome copy_converted(FontInstallation& installation, GWFont& font, const GW_FILE_SPEC& original) {
    Result<std::string> path = convert_outlines(original.get_path());
    if (!path) return path.failure();
    const ConvertedFile converted(*path);
    const GW_FILE_SPEC file = converted.spec();
    const std::string name = font.name_in_copy(original);
    Outcome copied = installation.copy_from<GW_BUF_FILE>(file, name);
    if (copied) font.remark({.subject = original.get_path(), .reason = Reason::CONVERTED, .detail = name});
    return copied;
}

}  // namespace

GW_FSM_BASE& truetype_module() {
    static SfntModule module(GWFont::TRUETYPE_FONT, {{EXT_TTF, ".ttf"}, {EXT_TTC, ".ttc"}});
    return module;
}

GW_FSM_BASE& opentype_module() {
    static SfntModule module(GWFont::OPENTYPE_FONT, {{EXT_OTF, ".otf"}, {EXT_OTC, ".otc"}});
    return module;
}

SfntModule::SfntModule(int type, std::initializer_list<std::pair<int, const char*>> extensions)
    : AnsweringModule(type), file_names(TABLE_TOKENS, TABLE_CHARS, EXT_UNKNOWN) {
    for (const auto& [id, extension] : extensions) file_names.add_token(id, extension);
}

bool SfntModule::takes(std::string_view file_name) const {
    return font_policy().takes_todays_formats() && file_names.get_id_of_end(file_name) != EXT_UNKNOWN;
}

void SfntModule::list_font_file_names(GW_FSPEC_LIST& out, GW_DIR* dir, int recursive) {
    if (font_policy().takes_todays_formats()) dir->get_file_spec_list(out, recursive, &file_names);
}

void SfntModule::list_installed_font_file_names(GW_FSPEC_LIST& out, GW_FPE* fpe) {
    for (const ListedFile& file : listed_files(*fpe, [this](std::string_view name) { return takes(name); }))
        out.append(new GW_FILE_SPEC(file.name.c_str(), fpe->get_element(), FILE_TYPE_UNDETERMINED,
                                    file_names.get_id_of_end(file.name)));
}

void SfntModule::list_installed_font_names(GW_STRING_LIST& out, GW_FPE* fpe) {
    for (const ListedFile& file : listed_files(*fpe, [this](std::string_view name) { return takes(name); }))
        out.append(new GW_STRING(file.names.front().xlfd.c_str()));
}

std::unique_ptr<GWFont> SfntModule::make_font(FontPlace& place, const GW_FILE_SPEC& file) const {
    auto font = std::make_unique<GWFont>(static_cast<GWFont::GW_FONT_TYPE>(get_type()));
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(
        new GW_FILE_SPEC(file.get_name(), file.get_dir(), file.get_file_type(), file.get_ext_type()));
    font->set_files_in(place, std::move(files));
    return font;
}

void SfntModule::make_font_list(GW_LIST<GWFont>& out, GW_DIR* dir, int recursive) {
    GW_FSPEC_LIST found;
    const ElementsOwner found_owner(found);
    list_font_file_names(found, dir, recursive);
    FontPlaces places;
    std::vector<GWFont*> fonts;
    for (const GW_FILE_SPEC* spec : found) {
        if (spec->get_file_type() != FILE_TYPE_REGULAR) continue;
        fonts.push_back(make_font(places.at(spec->get_dir()), *spec).release());
        out.append(fonts.back());
    }
    name_source_fonts(fonts);
}

void SfntModule::make_installed_font_list(GW_LIST<GWFont>& out, GW_FPE* fpe) {
    FontPlaces places;
    for (ListedFile& file : listed_files(*fpe, [this](std::string_view name) { return takes(name); })) {
        const GW_FILE_SPEC spec(file.name.c_str(), fpe->get_element(), FILE_TYPE_UNDETERMINED, EXT_UNKNOWN);
        std::unique_ptr<GWFont> font = make_font(places.at(spec.get_dir()), spec);
        font->set_index_names(std::move(file.names));
        out.append(font.release());
    }
}

Outcome SfntModule::install(GWFont& font, GW_FPE& fpe) {
    const auto copy = [&](FontInstallation& installation, const DirectoryChange&) {
        return font.get_conversion() ? copy_converted(installation, font, *first_file(font))
                                     : installation.copy_files<GW_BUF_FILE>();
    };
    return install_in_change(font, fpe, copy).with(Sequel::FONT_LEFT_OUT);
}

Outcome SfntModule::make_visible(GWFont& font, GW_FPE& fpe) {
    const GW_FILE_SPEC* first = first_file(font);
    if (first == nullptr || font.get_index_names().empty()) return done();
    return enter_in_index(font, fpe, fpe.index_name(*first)).with(Sequel::FONT_LEFT_OUT);
}

Outcome SfntModule::remove(GWFont& font) {
    return remove_files_and_entry(font).with(Sequel::FONT_STAYS);
}

Outcome SfntModule::can_install(GWFont& font) const {
    Outcome possible = can_be_indexed(font);
    if (possible && font.get_conversion()) possible = can_convert();
    return possible.with(Sequel::FONT_LEFT_OUT);
}

}  // namespace gw
