// SPDX-License-Identifier: MIT
#include "model/gw_font.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "core/font_policy.h"
#include "core/text.h"
#include "fontfiles/gw_fontdir_file.h"
#include "fontpath/gw_fpe.h"
#include "model/font_place.h"
#include "model/gw_xlfd_name.h"
#include "model/hrn_words.h"
#include "modules/gw_fsm_list.h"

namespace {

struct CharsetName {
    std::string_view charset;  // registry and encoding, in lower case
    const char* readable;
};

constexpr std::array<CharsetName, 21> CHARSET_NAMES = {{
    {"dec.cns11643.1986-2", "Chinese-11643"},
    {"dec.dtscs.1990-2", "DEC-Taiwan-Supplemental"},
    {"gb2312.1980-0", "PRC-Hanzi-GL"},
    {"gb2312.1980-1", "PRC-Hanzi-GR"},
    {"iso646.1991-irv", "ISO-646"},
    {"iso8859-1", "ISO-Latin-1"},
    {"iso8859-2", "ISO-Latin-2"},
    {"iso8859-3", "ISO-Latin-3"},
    {"iso8859-4", "ISO-Latin-4"},
    {"iso8859-5", "ISO-Latin/Cyrillic"},
    {"iso8859-6", "ISO-Latin/Arabic"},
    {"iso8859-7", "ISO-Latin/Greek"},
    {"iso8859-8", "ISO-Latin/Hebrew"},
    {"iso8859-9", "ISO-Latin-5"},
    {"jisx0201.1976-0", "Roman-Katakana"},
    {"jisx0208.1983-0", "Kanji-1983"},
    {"jisx0208.1983-1", "Kanji-1983-1"},
    {"jisx0208.1990-0", "Kanji-1990"},
    {"jisx0212.1990-0", "Kanji-Supplement-1990"},
    {"ksc5601.1987-0", "Korean-1987"},
    {"ksc5601.1987-1", "Korean-1987-1"},
}};

// The fields that are equal for all fonts of a human-readable name. Kept: foundry and set width separate
// fonts of one name.
constexpr std::array<std::size_t, 9> HRN_FIELDS = {
    GWFont::FOUNDRY, GWFont::TYPEFACE_NAME,    GWFont::WEIGHT_NAME,
    GWFont::SLANT,   GWFont::SETWIDTH_NAME,    GWFont::ADD_STYLE_NAME,
    GWFont::SPACING, GWFont::CHARSET_REGISTRY, GWFont::CHARSET_ENCODING};

/// How well the locales of the world can draw with a font of this name: the lower the better.
int rank(std::string_view xlfd) {
    const std::string name = gw::lower_case(xlfd);
    if (name.ends_with("-iso8859-1")) return 0;
    return name.ends_with("-iso10646-1") ? 1 : 2;
}

enum Naming { XLFD_NAME, POSTSCRIPT_NAME };
enum Form { BITMAPS, OUTLINES };

struct FontType {
    GWFont::GW_FONT_TYPE type;
    const char* word;
    Naming naming;
    Form form;
};

constexpr FontType FONT_TYPES[] = {
#define FONT_TYPE(name, number, word, naming, form, module) {GWFont::name, word, naming, form},
#include "model/font_types.def"
};

/// The type's line of the table; null for a wrong type.
const FontType* find_type(GWFont::GW_FONT_TYPE type) {
    const auto* found = std::find_if(std::begin(FONT_TYPES), std::end(FONT_TYPES),
                                     [type](const FontType& known) { return known.type == type; });
    return found != std::end(FONT_TYPES) ? found : nullptr;
}

const char* type_tag(GWFont::GW_FONT_TYPE type) {
    if (const FontType* found = find_type(type); found != nullptr) return found->word;
    // Kept: a wrong font type ends the program.
    std::fputs("construct_hrn: wrong font type\n", stdout);
    std::exit(-1);
}

}  // namespace

void* gw_alloc(unsigned n) {
    return ::operator new(n);
}

void gw_free(void* storage) {
    ::operator delete(storage);
}

GWFont::GWFont(GW_FONT_TYPE type) : font_type(type) {}

GWFont::GWFont(GWFont& other, const char* dir)
    : RefCounted(),
      font_type(other.get_conversion() ? other.get_conversion()->type : other.font_type),
      disk_space(other.get_conversion() ? 0 : other.get_disk_space()),
      xlfd_name(other.get_xlfd_name()),
      index_names(other.index_names),
      is_xlfd_its_index_name(other.is_xlfd_its_index_name),
      fields(other.fields) {
    set_ps_name(other.get_ps_name());
    if (other.file_list) {
        file_list = std::make_unique<GW_FSPEC_LIST>();
        for (const GW_FILE_SPEC* spec : *other.file_list) {
            file_list->append(new GW_FILE_SPEC(other.name_in_copy(*spec).c_str(), dir, spec->get_file_type(),
                                               spec->get_ext_type()));
        }
    }
    set_dir_name(dir);
}

GWFont::~GWFont() {
    if (file_list) gw::delete_elements(*file_list);
}

GWFont::GW_FONT_TYPE GWFont::get_type() const {
    return font_type;
}

bool GWFont::is_postscript_named() const {
    const FontType* known = find_type(font_type);
    return known != nullptr && known->naming == POSTSCRIPT_NAME;
}

bool GWFont::is_bitmap() const {
    const FontType* known = find_type(font_type);
    return known != nullptr && known->form == BITMAPS;
}

void GWFont::set_field(FIELD f, const char* value) {
    if (f < FOUNDRY || f > CHARSET_ENCODING) {
        std::fputs("GWFont::set_field : Incorrect field specified\n", stdout);
        return;
    }
    std::string text = gw::truncated(value, FIELD_LIMIT);
    for (char& c : text) {
        if (c == '-') c = ' ';
    }
    fields.set(static_cast<std::size_t>(f), text);
}

// Kept: reading a wrong field is reported in the words for writing one.
const char* GWFont::get_field(FIELD f) const {
    if (f < FOUNDRY || f > CHARSET_ENCODING) {
        std::fputs("GWFont::set_field : Incorrect field specified\n", stdout);
        return nullptr;
    }
    return fields.c_str(static_cast<std::size_t>(f));
}

void GWFont::set_xlfd_name(const char* name) {
    const std::string given = name;  // `name` may point to this record's own text
    if (is_xlfd_its_index_name && given != xlfd_name) {
        index_names = get_index_names();
        is_xlfd_its_index_name = false;
    }
    xlfd_name.assign(given, 0, NAME_LIMIT);
    if (is_xlfd_name(given.c_str()) != 0) fields.take(given);
}

const GWFont::RareFacts& GWFont::known_facts() const {
    static const RareFacts NONE;
    return rare_facts ? *rare_facts : NONE;
}

void GWFont::set_index_names(std::vector<gw::IndexName> names) {
    name_hashes.clear();
    is_xlfd_its_index_name = false;
    index_names = std::move(names);
    const auto best = std::min_element(
        index_names.begin(), index_names.end(), [](const gw::IndexName& a, const gw::IndexName& b) {
            return std::pair(a.face, rank(a.xlfd)) < std::pair(b.face, rank(b.xlfd));
        });
    if (best != index_names.end()) set_xlfd_name(best->xlfd.c_str());
    is_xlfd_its_index_name =
        index_names.size() == 1 && !xlfd_name.empty() && index_names.front() == gw::IndexName{0, xlfd_name};
    if (is_xlfd_its_index_name) std::vector<gw::IndexName>().swap(index_names);
}

std::vector<gw::IndexName> GWFont::get_index_names() const {
    return is_xlfd_its_index_name ? std::vector<gw::IndexName>{{0, xlfd_name}} : index_names;
}

std::vector<gw::IndexName> GWFont::get_all_names() {
    return index_names.empty() ? std::vector<gw::IndexName>{{0, get_xlfd_name()}} : index_names;
}

const std::vector<std::size_t>& GWFont::hashes() {
    if (!name_hashes.empty()) return name_hashes;
    const auto add = [&](std::string_view name) {
        name_hashes.push_back(std::hash<std::string>()(gw::lower_case(name)));
    };
    for (const gw::IndexName& name : index_names) add(name.xlfd);
    if (index_names.empty()) add(get_xlfd_name());
    std::sort(name_hashes.begin(), name_hashes.end());
    return name_hashes;
}

// An installation compares a font with every other one, so most comparisons must end at the hashes.
bool GWFont::shares_a_name(GWFont& other) {
    std::vector<std::size_t> common;
    std::set_intersection(hashes().begin(), hashes().end(), other.hashes().begin(), other.hashes().end(),
                          std::back_inserter(common));
    if (common.empty()) return false;
    const std::vector<gw::IndexName> theirs = other.get_all_names();
    const std::vector<gw::IndexName> mine = get_all_names();
    return std::any_of(mine.begin(), mine.end(), [&](const gw::IndexName& name) {
        return std::any_of(theirs.begin(), theirs.end(), [&](const gw::IndexName& their) {
            return ::strcasecmp(name.xlfd.c_str(), their.xlfd.c_str()) == 0;
        });
    });
}

std::string GWFont::name_in_copy(const GW_FILE_SPEC& file) const {
    std::string name = file.get_name();
    if (!gw::font_policy().takes_any_file_name()) return name;
    // Readers of an index end the file's name at any blank, also at those that are control characters.
    std::replace_if(
        name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) <= ' '; }, '_');
    if (name.front() == ':') name.front() = '_';  // options would begin here
    const std::string extension = gw::font_extension(name);
    return name.substr(0, name.size() - extension.size()) +
           (get_conversion() ? get_conversion()->extension : extension);
}

const char* GWFont::get_xlfd_name() {
    if (xlfd_name.empty()) xlfd_name = gw::truncated(fields.name(), NAME_LIMIT);
    return xlfd_name.c_str();
}

void GWFont::construct_xlfd_name(const char* /*ignored*/, char* dst, unsigned len) {
    if (is_bitmap() && is_xlfd_name(xlfd_name.c_str()) == 0) {
        gw::copy_text(dst, std::size_t{len} + 1, xlfd_name);
        return;
    }
    const std::string name = fields.name();
    if (name.size() > len) {
        // Kept: the library reports on standard output.
        std::fputs("Not enough space in the xlfd_name string\n", stdout);
        return;
    }
    gw::copy_text(dst, std::size_t{len} + 1, name);
}

void GWFont::set_ps_name(const char* name) {
    set_rare(&RareFacts::ps_name, gw::truncated(name, NAME_LIMIT));
}

const char* GWFont::get_ps_name() const {
    return known_facts().ps_name.c_str();
}

void GWFont::set_dir_name(const char* dir) {
    dir_name = dir;
    update_read_only();
}

const char* GWFont::get_dir_name() const {
    return dir_name ? dir_name->c_str() : nullptr;
}

void GWFont::set_font_file_list(std::unique_ptr<GW_FSPEC_LIST> list) {
    if (file_list) gw::delete_elements(*file_list);
    file_list = std::move(list);
    update_read_only();
}

void GWFont::set_files_in(gw::FontPlace& place, std::unique_ptr<GW_FSPEC_LIST> list) {
    if (file_list) gw::delete_elements(*file_list);
    file_list = std::move(list);
    dir_name = place.seen().path();
    if (!read_only) read_only = place.is_read_only(*file_list);
    disk_space = place.known_kilobytes(*file_list);
}

GW_FSPEC_LIST* GWFont::get_font_file_list() const {
    return file_list.get();
}

void GWFont::set_preset_hrn_name(const char* name) {
    set_rare(&RareFacts::preset_hrn_name, gw::truncated(name, NAME_LIMIT));
}

/// The words of a name, each with its leading blank. Kept: the set width is not part of a name.
struct GWFont::NamePieces {
    std::string family;
    std::string weight;
    std::string add_style;
    std::string slant;
};

GWFont::NamePieces GWFont::name_pieces() const {
    const auto in_capitals = gw::font_policy().tells_names_apart() ? gw::capitalized_words : gw::capitalized;
    const std::string& family = known_facts().family_in_font;
    return {family.empty() ? in_capitals(fields[TYPEFACE_NAME]) : family,
            ' ' + in_capitals(fields[WEIGHT_NAME]), gw::add_style_word(fields[ADD_STYLE_NAME]),
            gw::slant_word(fields[SLANT])};
}

std::string GWFont::get_hrn_name() {
    const std::string& distinction = get_distinction();
    if (const std::string& preset = known_facts().preset_hrn_name; !preset.empty()) return preset;
    const std::string tag =
        (distinction.empty() ? "" : " (" + distinction + ')') + " [" + type_tag(font_type) + ']';
    std::string name;
    if (is_postscript_named()) {
        name = gw::capitalized(get_ps_name()) + tag;
    } else if (is_nameless()) {
        name = (*file_list->begin())->get_name() + tag;
    } else if (is_xlfd_name(get_xlfd_name()) == 0) {
        // Kept: a name that is no XLFD name has two blanks before its type.
        name = xlfd_name + ' ' + tag;
    } else {
        const NamePieces pieces = name_pieces();
        name = pieces.family + pieces.weight + pieces.add_style + pieces.slant + listed_charset() + tag;
    }
    const std::string& mark = known_facts().mark;
    if (!mark.empty()) gw::append_at_column(name, mark);
    if (read_only && mark.empty()) set_read_only_str(name);
    return name;
}

/// A font of a source of which nothing is known but its file.
bool GWFont::is_nameless() const {
    return get_obstacle() && fields[TYPEFACE_NAME].empty() && file_list && !file_list->is_empty();
}

// Kept: names of bitmap fonts have no charset.
std::string GWFont::listed_charset() const {
    const bool is_latin1 =
        gw::lower_case(fields[CHARSET_REGISTRY]) == "iso8859" && fields[CHARSET_ENCODING] == "1";
    if (!is_bitmap() || is_latin1 || !gw::font_policy().names_charsets()) return "";
    return charset_words();
}

std::string GWFont::get_cli_hrn_name() {
    if (const std::string& preset = known_facts().preset_hrn_name; !preset.empty()) return preset;
    const std::string tag = std::string(" ") + type_tag(font_type);
    if (is_postscript_named()) return '[' + gw::capitalized(get_ps_name()) + tag + ']';
    if (is_xlfd_name(get_xlfd_name()) == 0) return '[' + xlfd_name + ' ' + tag + ']';
    const NamePieces pieces = name_pieces();
    return '[' + gw::capitalized(fields[FOUNDRY]) + ' ' + pieces.family + pieces.weight + pieces.add_style +
           pieces.slant + get_charset_hrn_name() + tag + ']';
}

std::string GWFont::charset_words() const {
    const std::string charset =
        std::string(fields[CHARSET_REGISTRY]).append("-").append(fields[CHARSET_ENCODING]);
    const auto known = std::find_if(
        CHARSET_NAMES.begin(), CHARSET_NAMES.end(),
        [lower = gw::lower_case(charset)](const CharsetName& name) { return name.charset == lower; });
    return ' ' + (known != CHARSET_NAMES.end() ? known->readable : charset);
}

const char* GWFont::get_charset_hrn_name() {
    if (!charset_hrn_name) charset_hrn_name = std::make_unique<std::string>(charset_words());
    return charset_hrn_name->c_str();
}

int GWFont::compare_hrn(const GWFont* other) const {
    if (font_type != other->font_type) return 0;
    for (const std::size_t f : HRN_FIELDS) {
        if (::strcasecmp(fields.c_str(f), other->fields.c_str(f)) != 0) return 0;
    }
    return 1;
}

// A field never contains a dash, so dashes can separate the fields. `tolower` uses the locale, as
// `strcasecmp` does.
std::string GWFont::hrn_key() const {
    constexpr std::size_t USUAL_LENGTH = 80;
    std::string key = std::to_string(font_type);
    key.reserve(USUAL_LENGTH);
    for (const std::size_t f : HRN_FIELDS) {
        key += '-';
        for (const char c : fields[f]) key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return key;
}

int GWFont::fontcmp(GWFont* other) {
    if (font_type != other->font_type) return 0;
    const char* mine = is_postscript_named() ? get_ps_name() : get_xlfd_name();
    const char* theirs = is_postscript_named() ? other->get_ps_name() : other->get_xlfd_name();
    return ::strcasecmp(mine, theirs) == 0 ? 1 : 0;
}

gw::Outcome GWFont::install(const std::string& dir, GW_FSM_LIST& modules) {
    GW_FPE destination(dir.c_str());
    gw::Outcome outcome = modules.install(*this, destination);
    // Also where nothing was installed.
    if (!gw::font_policy().makes_index_with_first_font()) destination.get_fontdir_file().create();
    return outcome;
}

gw::Outcome GWFont::remove(GW_FSM_LIST& modules) {
    return modules.remove(*this);
}

int GWFont::install_font(const char* dir, char /*ignored*/, GW_FSM_LIST& modules) {
    gw::tell_unless_done(install(dir, modules));
    return 1;
}

int GWFont::delete_font(GW_FSM_LIST& modules) {
    // Kept: deleting a font returns 0.
    gw::tell_unless_done(remove(modules));
    return 0;
}

unsigned GWFont::get_disk_space() {
    if (!file_list || disk_space != 0) return file_list ? disk_space : 0;
    disk_space = gw::kilobytes_of(*file_list);
    return disk_space;
}

bool GWFont::is_read_only() const {
    return read_only;
}

void GWFont::update_read_only() {
    if (read_only || !file_list) return;
    if (!dir_name) {
        if (const GW_FILE_SPEC* first = file_list->get_elem_at_pos(1); first != nullptr)
            set_dir_name(first->get_dir());
        return;
    }
    read_only = gw::FontPlace(*dir_name).is_read_only(*file_list);
}

int GW_SORT_KEY<GWFont>::compare(GWFont& a, GWFont& b) {
    return ::strcasecmp(a.get_cli_hrn_name().c_str(), b.get_cli_hrn_name().c_str());
}
