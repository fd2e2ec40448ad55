// SPDX-License-Identifier: MIT
//
// The headers of Type 1 outline and metrics files: what a listing reads from them, what is copied when the
// font is installed, and the names that the index of PostScript resources gives them.
#include <algorithm>

#include "core/gw_dir.h"
#include "fuzz.h"
#include "makepsres/font_name.h"
#include "model/gw_font.h"
#include "modules/font_modules.h"
#include "modules/gw_t1_buf_file.h"
#include "modules/index_access.h"
#include "tests/support/under_policy.h"

namespace {

/// A field holds no dash, which separates fields, and not more than fits.
void try_fields(GWFont& font, std::string_view input) {
    for (int number = 0; number < GWFont::FIELD_COUNT; ++number) {
        const std::string_view field = font.get_field(static_cast<GWFont::FIELD>(number));
        GW_MUST_HOLD(field.find('-') == std::string_view::npos, input);
        GW_MUST_HOLD(field.size() <= GWFont::FIELD_LIMIT, input);
    }
    const std::string_view name = font.get_xlfd_name();
    GW_MUST_HOLD(std::count(name.begin(), name.end(), '-') == GWFont::FIELD_COUNT, input);
    GW_MUST_HOLD(font.get_hrn_name().find("[Type-1]") != std::string::npos, input);
    GW_MUST_HOLD(font.get_cli_hrn_name().ends_with(']'), input);
}

/// An index line that is accepted is read back as it is.
void try_index_line(GWFont& font, std::string_view input) {
    const gw::Result<std::string> line = gw::index_line(font, "a.pfa");
    if (!line) return;
    std::string file;
    std::string name;
    GW_FONTDIR_FILE::split_line(line->c_str(), file, name);
    GW_MUST_HOLD(file == "a.pfa" && name == font.get_xlfd_name(), input);
    GW_MUST_HOLD(line->size() < GW_FONTDIR_FILE::LINE_BUFFER && line->find('\n') == line->size() - 1, input);
}

void try_listing(std::string_view input) {
    GW_LIST<GWFont> fonts;
    GW_DIR dir(gw::fuzz::directory().make_dir("fonts").c_str());
    gw::type1_module().make_font_list(fonts, &dir, 0);
    GW_MUST_HOLD(fonts.get_count() == 1, input);
    const gw::Ref<GWFont> font(fonts.get_elem_at_pos(1));
    try_fields(*font, input);
    try_index_line(*font, input);
}

/// The copy is complete: nothing is lost but the bytes in front of the first "%".
void try_copy(std::string_view input) {
    GW_DIR target(gw::fuzz::directory().make_dir("copies").c_str());
    GW_T1_BUF_FILE file("a.pfa", gw::fuzz::directory().file("fonts").c_str(), gw::FILE_TYPE_REGULAR);
    file.copy(&target);
    const std::string copied = gw::fuzz::directory().read("copies/a.pfa");
    const std::string_view block = input.substr(0, GW_T1_BUF_FILE::BLOCK_SIZE);
    const std::size_t start = std::min(block.find('%'), block.size());
    GW_MUST_HOLD(copied.size() == input.size() - start + 1, input);
    GW_MUST_HOLD(copied.starts_with(block.substr(start)), input);
}

void try_resource_name(const std::optional<std::string>& name, std::string_view input) {
    if (!name) return;
    GW_MUST_HOLD(!name->empty() && name->size() <= gw::psres::LONGEST_FONT_NAME, input);
    GW_MUST_HOLD(input.find(*name) != std::string_view::npos || input.starts_with('\x80'), input);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    directory().make_dir("fonts");
    directory().write("fonts/a.pfa", input);
    for (const bool modern : {false, true}) {
        const test::UnderPolicy policy(modern);
        try_listing(input);
    }
    try_copy(input);
    try_resource_name(psres::outline_font_name(input), input);
    try_resource_name(psres::metrics_font_name(input), input);
}
