// SPDX-License-Identifier: MIT
#include "glyphward-fonts/rows.h"

#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>

#include "core/text.h"
#include "fontfiles/font_verdict.h"
#include "platform/user_name.h"

#include "glyphward-fonts/font_notes.h"

namespace gw::fonts {

namespace {

std::string word_for(GWFont::GW_FONT_TYPE type) {
    switch (type) {
        case GWFont::BITMAP_FONT:
            return "bitmap";
        case GWFont::TRUETYPE_FONT:
            return "truetype";
        case GWFont::OPENTYPE_FONT:
            return "opentype";
        default:
            return "type1";
    }
}

void add_once(std::vector<std::string>& all, const std::string& one) {
    if (std::find(all.begin(), all.end(), one) == all.end()) all.push_back(one);
}

void add_font(Row& row, GWFont& font) {
    for (const IndexName& name : font.get_all_names()) add_once(row.xlfds, name.xlfd);
    if (font.get_font_file_list() == nullptr) return;
    for (const GW_FILE_SPEC* file : *font.get_font_file_list()) add_once(row.files, file->get_path());
}

std::string owner_of(const std::string& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? user_name(info.st_uid) : "";
}

Json in_json(const std::vector<std::string>& texts) {
    Json all = Json::array();
    for (const std::string& text : texts) all.push_back(fonts::in_json(text));
    return all;
}

std::string_view name_in(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

Row row_of(GWHRNElement& element) {
    Row row;
    row.shown = element.get_name();
    row.name = without_marks(row.shown);
    row.kilobytes = element.get_disk_space();
    row.is_read_only = element.is_read_only() != 0;
    row.element = &element;
    const GWFont* representative = element.get_representative();
    if (representative == nullptr) return row;
    row.format = word_for(representative->get_type());
    if (representative->get_dir_name() != nullptr) row.directory = representative->get_dir_name();
    for (const GWHRNElement::PointSize& size : element.get_slots()) {
        if (representative->is_bitmap()) row.sizes.push_back(size.point_size);
        for (const Ref<GWFont>& font : size.fonts) add_font(row, *font);
    }
    if (!row.files.empty()) row.owner = owner_of(row.files.front());
    return row;
}

Row row_of(const GWAlias& alias) {
    Row row;
    row.shown = alias.get_hrn_name();
    row.name = without_marks(row.shown);
    row.format = "alias";
    row.xlfds = {alias.get_alias_name()};
    row.font = alias.get_font_name();
    row.directory = alias.get_dir_name();
    row.is_read_only = true;
    row.owner = owner_of(with_trailing_slash(row.directory) + "fonts.alias");
    return row;
}

Json in_json(const Row& row) {
    Json json = {{"name", in_json(row.name)},   {"format", row.format},
                 {"xlfds", in_json(row.xlfds)}, {"directory", in_json(row.directory)},
                 {"files", in_json(row.files)}, {"kilobytes", row.kilobytes},
                 {"owner", in_json(row.owner)}, {"readOnly", row.is_read_only}};
    if (!row.sizes.empty()) json["decipoints"] = in_json(row.sizes);
    if (row.element == nullptr) json["font"] = in_json(row.font);
    return json;
}

std::optional<Failure> fault_of(const Row& row) {
    if (row.element == nullptr) return std::nullopt;
    for (const GWHRNElement::PointSize& size : row.element->get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) {
            const GW_FSPEC_LIST* files = font->get_font_file_list();
            if (files == nullptr || files->is_empty()) return Failure{row.name, Reason::NO_FILE};
            const Verdict verdict = judge((*files->begin())->get_path());
            if (verdict.kind != Verdict::Kind::OK) return verdict.why;
        }
    }
    return std::nullopt;
}

bool Pattern::matches(const std::string& name) const {
    return ::fnmatch(text_.c_str(), name.c_str(), FNM_CASEFOLD) == 0 || lower_case(name) == lower_case(text_);
}

bool Pattern::matches(const Row& row) const {
    const auto this_one = [this](const std::string& name) { return matches(name); };
    return matches(row.name) || std::any_of(row.xlfds.begin(), row.xlfds.end(), this_one) ||
           std::any_of(row.files.begin(), row.files.end(), [&](const std::string& path) {
               return matches(path) || matches(std::string(name_in(path)));
           });
}

std::vector<Row> chosen(const std::vector<Row>& rows, const std::vector<std::string>& patterns,
                        Report& report, Tally* tally) {
    if (patterns.empty()) return rows;
    std::vector<bool> is_chosen(rows.size(), false);
    for (const std::string& text : patterns) {
        const Pattern pattern(text);
        bool is_found = false;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (!pattern.matches(rows[i])) continue;
            is_chosen[i] = true;
            is_found = true;
        }
        if (is_found) continue;
        report.trouble(text, Message::SAYS_NO_SUCH_FONT);
        if (tally != nullptr) tally->failed();
    }
    std::vector<Row> found;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (is_chosen[i]) found.push_back(rows[i]);
    }
    return found;
}

}  // namespace gw::fonts
