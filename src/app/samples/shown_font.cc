// SPDX-License-Identifier: MIT
#include "app/samples/shown_font.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "app/program/failures.h"
#include "texts/messages.h"

namespace gw {

namespace {

void append_names(std::vector<std::string>& all, GWFont& font) {
    for (const IndexName& name : font.get_all_names()) {
        if (std::find(all.begin(), all.end(), name.xlfd) == all.end()) all.push_back(name.xlfd);
    }
}

std::vector<std::string> names_of(GWFont& font, const GWHRNElement* entry) {
    std::vector<std::string> names;
    if (font.is_postscript_named()) return {font.get_ps_name()};
    if (entry == nullptr || !font.is_bitmap()) {
        append_names(names, font);
        return names;
    }
    for (const GWHRNElement::PointSize& size : entry->get_slots()) {
        for (const Ref<GWFont>& each : size.fonts) append_names(names, *each);
    }
    return names;
}

/// The face that has the name which the font is known by.
long face_of(GWFont& font) {
    const std::string_view name = font.get_xlfd_name();
    for (const IndexName& each : font.get_index_names()) {
        if (each.xlfd == name) return each.face;
    }
    return 0;
}

Message word_for(FontFormat format) {
    switch (format) {
        case FontFormat::TYPE1:
            return Message::FORMAT_TYPE1;
        case FontFormat::CID:
            return Message::FORMAT_CID;
        case FontFormat::TRUETYPE:
            return Message::FORMAT_TRUETYPE;
        case FontFormat::OPENTYPE_CFF:
            return Message::FORMAT_OPENTYPE;
        case FontFormat::BDF:
            return Message::FORMAT_BDF;
        case FontFormat::PCF:
            return Message::FORMAT_PCF;
        case FontFormat::OTHER:
            break;
    }
    return Message::FORMAT_OTHER;
}

Message word_for(GWFont::GW_FONT_TYPE type) {
    return type == GWFont::TYPE1_FONT ? Message::FORMAT_TYPE1 : Message::FORMAT_TRUETYPE;
}

}  // namespace

ShownFont shown_font(GWFont& font, const GWHRNElement* entry) {
    ShownFont shown;
    shown.font = &font;
    if (font.get_font_file_list() != nullptr) {
        for (const GW_FILE_SPEC* file : *font.get_font_file_list())
            shown.paths.emplace_back(file->get_path());
    }
    if (!shown.paths.empty()) {
        const std::string& path = shown.paths.front();
        const std::size_t begin = path.rfind('/') + 1;
        shown.file = path.substr(begin);
        shown.directory = path.substr(0, begin);
    }
    shown.face = face_of(font);
    shown.names = names_of(font, entry);
    return shown;
}

std::string size_in_words(const std::vector<std::string>& paths) {
    if (paths.empty()) return "";
    unsigned bytes = 0;
    for (const std::string& path : paths) {
        struct stat file = {};
        if (::stat(path.c_str(), &file) != 0) return reason_in_words(Failure::of_system(path, errno));
        bytes += static_cast<unsigned>(file.st_size);
    }
    return text_of(Message::FILE_BYTES, bytes);
}

std::string format_in_words(const FaceFacts& facts, bool is_compressed, const GWFont& font) {
    std::string words = text_of(word_for(facts.format));
    if (is_compressed) words = text_of(Message::FORMAT_COMPRESSED, {words});
    if (facts.faces > 1) words = text_of(Message::FORMAT_ONE_OF_SEVERAL, {words});
    if (font.get_obstacle()) return words + "; " + reason_in_words(*font.get_obstacle());
    if (const auto& how = font.get_conversion())
        words = text_of(Message::FORMAT_CONVERTED, {words, text_of(word_for(how->type))});
    return words;
}

}  // namespace gw
