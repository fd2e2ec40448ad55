// SPDX-License-Identifier: MIT
//
// One font as the system knows it: its type, the fourteen fields of its XLFD name, its PostScript name, the
// files that make it up and the directory that holds them.
//
// Owner of the file specifications in the file list: this record.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/failure.h"
#include "core/gw_base.h"
#include "core/gw_fspec_list.h"
#include "core/gw_list.h"
#include "core/ref.h"
#include "model/index_name.h"
#include "model/xlfd_fields.h"

class GW_FSM_LIST;

namespace gw {
class FontPlace;
}

/// Heap storage of n bytes, and its release.
void* gw_alloc(unsigned n);
void gw_free(void* storage);

class GWFont : public GW_BASE, public gw::RefCounted {
  public:
    enum GW_FONT_TYPE : int {
#define FONT_TYPE(name, number, word, naming, form, module) name = (number),
#include "model/font_types.def"
    };
    enum FIELD : int {
        FOUNDRY,
        TYPEFACE_NAME,
        WEIGHT_NAME,
        SLANT,
        SETWIDTH_NAME,
        ADD_STYLE_NAME,
        PIXEL_SIZE,
        POINT_SIZE,  ///< decipoints
        RESOLUTION_X,
        RESOLUTION_Y,
        SPACING,
        AVERAGE_WIDTH,
        CHARSET_REGISTRY,
        CHARSET_ENCODING,
    };
    static constexpr int FIELD_COUNT = gw::XlfdFields::COUNT;
    static constexpr std::size_t FIELD_LIMIT = gw::XlfdFields::LIMIT;  ///< characters of a field
    static constexpr std::size_t NAME_LIMIT =
        1792;  ///< characters of an XLFD, PostScript or human-readable name

    explicit GWFont(GW_FONT_TYPE type);
    /// A copy of `other` placed in directory `dir`: same names and files, all in `dir`.
    GWFont(GWFont& other, const char* dir);
    ~GWFont() override;
    GWFont(const GWFont&) = delete;
    GWFont& operator=(const GWFont&) = delete;

    [[nodiscard]] GW_FONT_TYPE get_type() const;
    /// Whether the font is known by its PostScript name, and not by an XLFD name.
    [[nodiscard]] bool is_postscript_named() const;
    /// Whether the font is a bitmap font, which has one size, and not an outline, which can be scaled.
    [[nodiscard]] bool is_bitmap() const;
    /// Stores at most 127 characters of `value`, each '-' as a blank. A wrong field is reported on standard
    /// output and changes nothing.
    void set_field(FIELD f, const char* value);
    /// The field's text, owned by this record; null (and a report on standard output) for a wrong field.
    const char* get_field(FIELD f) const;

    /// Stores a name; an XLFD name also sets the fields, another name leaves them.
    void set_xlfd_name(const char* name);
    /// The stored name, composed from the fields first when there is none. Owned by this record.
    const char* get_xlfd_name();
    /// The name composed anew from the fields, or the stored one of a bitmap font that has no XLFD name, into
    /// `dst`, which holds `len` characters and a terminating NUL. When it does not fit, a message is written
    /// to standard output and `dst` stays as it was.
    void construct_xlfd_name(const char* ignored, char* dst, unsigned len);
    /// Gives the font all the names that an index has for its file, or will have. Its XLFD name is from now
    /// on the one that most locales can draw with: of the first font in the file, in ISO 8859-1 if there is
    /// one.
    void set_index_names(std::vector<gw::IndexName> names);
    /// Those names; none for a font that has only its XLFD name.
    [[nodiscard]] std::vector<gw::IndexName> get_index_names() const;
    /// The same, or else the XLFD name alone.
    std::vector<gw::IndexName> get_all_names();
    /// Whether one of this font's names, ignoring case, is one of the other's, whatever their types.
    bool shares_a_name(GWFont& other);
    void set_ps_name(const char* name);
    const char* get_ps_name() const;

    void set_dir_name(const char* dir);
    /// The directory that holds the files; null when it is not known.
    const char* get_dir_name() const;
    /// Takes ownership of `list` and of the specifications in it.
    void set_font_file_list(std::unique_ptr<GW_FSPEC_LIST> list);
    /// The same and `set_dir_name`, for a listing: `place` is the directory of the files.
    void set_files_in(gw::FontPlace& place, std::unique_ptr<GW_FSPEC_LIST> list);
    /// The files, owned by this record; may be null.
    [[nodiscard]] GW_FSPEC_LIST* get_font_file_list() const;

    /// What becomes of an outline that no X server opens: its copy is made as a font of another type.
    struct Conversion {
        GW_FONT_TYPE type;      ///< of the copy
        const char* extension;  ///< of the copy's file, for example ".ttf"
    };
    void set_conversion(const Conversion& how) {
        own_facts().conversion = how;
    }
    [[nodiscard]] const std::optional<Conversion>& get_conversion() const {
        return known_facts().conversion;
    }
    /// The name of the file in a copy of the font. If the font policy says so, a blank in it is "_" and the
    /// extension is in lower case; a file that is converted has its new extension.
    [[nodiscard]] std::string name_in_copy(const GW_FILE_SPEC& file) const;

    /// Why the font cannot be installed, whatever the destination; none if it can, as far as is known.
    void set_obstacle(const gw::Failure& why) {
        own_facts().obstacle = why;
    }
    [[nodiscard]] const std::optional<gw::Failure>& get_obstacle() const {
        return known_facts().obstacle;
    }
    /// A word in brackets behind the name in lists, where "[Read Only]" is for others ("[Damaged]").
    void set_mark(std::string_view text) {
        own_facts().mark = text;
    }
    /// Whether somebody has looked into the font's file.
    [[nodiscard]] bool is_checked() const {
        return known_facts().is_checked;
    }
    void set_checked() {
        own_facts().is_checked = true;
    }
    /// Something that the user should know of an installation that is a success.
    void remark(const gw::Failure& what) {
        own_facts().remarks.push_back(what);
    }
    std::vector<gw::Failure> take_remarks() {
        return rare_facts ? std::exchange(rare_facts->remarks, {}) : std::vector<gw::Failure>();
    }

    /// The family as the font itself writes it ("DejaVu Sans Mono"), for the name in lists.
    void set_family_in_font(std::string_view family) {
        set_rare(&RareFacts::family_in_font, family);
    }
    /// What tells the font from others whose name in lists is the same ("Adobe", "cour.pfa").
    void set_distinction(std::string_view text) {
        set_rare(&RareFacts::distinction, text);
    }
    [[nodiscard]] const std::string& get_distinction() const {
        return known_facts().distinction;
    }

    /// The preset name that, when it is not empty, stands for every human-readable name of the font.
    void set_preset_hrn_name(const char* name);
    /// The name shown in lists ("Helvetica Bold Oblique [Type-1]", with "[Read Only]" at column 46). If the
    /// font policy says so, a bitmap font's charset is before the bracket, unless it is ISO 8859-1.
    std::string get_hrn_name();
    /// The name in brackets with foundry and charset ("[Adobe Times Bold Italic ISO-Latin-1 Type-1]").
    std::string get_cli_hrn_name();
    /// A blank and the human-readable charset. Owned by this record.
    const char* get_charset_hrn_name();

    /// 1 when both fonts belong to one human-readable name: they differ only in sizes, resolutions and
    /// average width, or not at all.
    int compare_hrn(const GWFont* other) const;
    /// A text that is equal for two fonts exactly when `compare_hrn` returns 1.
    [[nodiscard]] std::string hrn_key() const;
    /// 1 when both records are the same font: their names are equal, ignoring case.
    int fontcmp(GWFont* other);

    /// Installs the font into `dir` with the module of its type; a missing index is created first.
    gw::Outcome install(const std::string& dir, GW_FSM_LIST& modules);
    /// Deletes the font with the module of its type.
    gw::Outcome remove(GW_FSM_LIST& modules);
    // The same without an outcome; a failure is passed to the listener.
    /// Returns 1.
    int install_font(const char* dir, char ignored, GW_FSM_LIST& modules);
    /// Returns 0.
    int delete_font(GW_FSM_LIST& modules);

    /// Kilobytes that the files occupy; measured once, when a listing has not seen it. Missing files count 0.
    unsigned get_disk_space();
    /// Kept: a font that was read-only once stays so.
    [[nodiscard]] bool is_read_only() const;

  private:
    /// What only fonts of a source have, or few of them: lists have many thousands of fonts.
    struct RareFacts {
        std::string preset_hrn_name = {};
        std::string family_in_font = {};
        std::string distinction = {};
        std::string ps_name = {};
        std::optional<Conversion> conversion = {};
        std::optional<gw::Failure> obstacle = {};
        std::vector<gw::Failure> remarks = {};
        std::string mark = {};
        bool is_checked = false;
    };
    /// To be changed.
    RareFacts& own_facts() {
        if (!rare_facts) rare_facts = std::make_unique<RareFacts>();
        return *rare_facts;
    }
    [[nodiscard]] const RareFacts& known_facts() const;
    /// Most fonts are given nothing where they had nothing.
    void set_rare(std::string RareFacts::*fact, std::string_view text) {
        if (rare_facts || !text.empty()) own_facts().*fact = text;
    }

    struct NamePieces;
    [[nodiscard]] NamePieces name_pieces() const;
    [[nodiscard]] std::string charset_words() const;
    [[nodiscard]] std::string listed_charset() const;
    void update_read_only();
    [[nodiscard]] bool is_nameless() const;
    const std::vector<std::size_t>& hashes();

    std::unique_ptr<GW_FSPEC_LIST> file_list;
    std::optional<std::string> dir_name;
    GW_FONT_TYPE font_type;
    unsigned disk_space = 0;  // kilobytes; 0 means not measured yet
    bool read_only = false;
    std::unique_ptr<std::string> charset_hrn_name;  // null until somebody has asked for it
    std::string xlfd_name;
    std::vector<gw::IndexName> index_names;
    bool is_xlfd_its_index_name = false;  // its only one, which is not kept twice
    std::vector<std::size_t>
        name_hashes;  // of all names in lower case, ascending; empty until they are needed
    std::unique_ptr<RareFacts> rare_facts;  // null until there is one
    gw::XlfdFields fields;
};

/// Font lists are sorted by the bracketed name, ignoring case.
template <>
struct GW_SORT_KEY<GWFont> {
    static int compare(GWFont& a, GWFont& b);
    static unsigned long generation() { return 0; }
};
