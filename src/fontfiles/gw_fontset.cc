// SPDX-License-Identifier: MIT
#include "fontfiles/gw_fontset.h"

#include <string_view>

#include "model/gw_font.h"

namespace {

constexpr const char* FIRST_LINE = ":definition";
constexpr const char* NEXT_FONT = ",\\\n\t";

std::string charset_of(const GWFont& font) {
    return std::string(font.get_field(GWFont::CHARSET_REGISTRY)) + '-' +
           font.get_field(GWFont::CHARSET_ENCODING);
}

}  // namespace

GWFontSet::GWFontSet(const char* new_name) : name(new_name) {}

GWFontSet::~GWFontSet() {
    for (GWFont* font : fonts) gw::Ref<GWFont>::adopt(font);
}

void GWFontSet::update_fontset_name(const char* new_name) {
    name = std::string(new_name);
}

void GWFontSet::append_base_font(const char* xlfd) {
    gw::Ref<GWFont> font(new GWFont(GWFont::BITMAP_FONT));
    font->set_xlfd_name(xlfd);
    append_name(font->get_xlfd_name());
    fonts.append(font.get());
    font.leave();
}

void GWFontSet::update_base_font(const char* xlfd) {
    const std::string_view wanted(xlfd);
    for (GWFont* font : fonts) {
        if (wanted.find(charset_of(*font)) == std::string_view::npos) continue;
        font->set_xlfd_name(xlfd);
        update_base_names();
        return;
    }
    append_base_font(xlfd);
}

void GWFontSet::update_base_names() {
    base_names.reset();
    for (GWFont* font : fonts) append_name(font->get_xlfd_name());
}

void GWFontSet::append_name(const char* xlfd) {
    if (base_names) {
        base_names->append(",").append(xlfd);
    } else {
        base_names = xlfd;
    }
}

std::string GWFontSet::definition() const {
    std::string text = name + FIRST_LINE;
    for (GWFont* font : fonts) text.append(NEXT_FONT).append(font->get_xlfd_name());
    return text + '\n';
}

int GWFontSet::equal(const GW_BASE* other) const {
    const auto* fontset = dynamic_cast<const GWFontSet*>(other);
    return fontset != nullptr && fontset->name == name ? 1 : 0;
}
