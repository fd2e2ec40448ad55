// SPDX-License-Identifier: MIT
//
// FontForge may crash, or worse, when a font is hostile: of 60 fonts with a few bytes changed, 11 have ended
// it by a segmentation fault. So it never sees anything but a font that FreeType opens, it gets little memory
// and time, and what it makes is a font only if FreeType says so. When this process is the superuser's,
// FontForge runs as nobody. It gets a copy with a name of ours, because it unpacks archives by their names
// and reads "(...)" at the end of a path.
#include "modules/outline_conversion.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "core/directory.h"
#include "core/replace_file.h"
#include "fontfiles/font_face.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"

namespace gw {

const char* const CONVERTED_EXTENSION = ".ttf";

namespace {

constexpr const char* CONVERTER = "fontforge";
constexpr const char* CONVERTER_PACKAGE = "fontforge-nox";
constexpr uid_t NOBODY = 65534;  // on every Debian; group nogroup has the same number

// $1 is the font, $2 the new file, $3 what the outlines say of their maker. mkfontscale finds the foundry
// there, but in a TrueType font it looks only at the names for the trademark and the manufacturer.
//
// A CID-keyed font has up to 65,535 glyphs, and a TrueType font needs two of these numbers for itself: the
// font loses a few glyphs that have no character. Its layout tables go first, because they would still
// point to these glyphs.
constexpr const char* SCRIPT = R"(Open($1)
if ($3 != "" && GetTTFName(0x409, 8) == "")
  SetTTFName(0x409, 8, $3)
endif
if ($cidfontname == "")
  Generate($2)
else
  CIDFlatten()
  lookups = GetLookups("GSUB")
  i = 0
  while (i < SizeOf(lookups))
    RemoveLookup(lookups[i])
    i++
  endloop
  lookups = GetLookups("GPOS")
  i = 0
  while (i < SizeOf(lookups))
    RemoveLookup(lookups[i])
    i++
  endloop
  i = CharCnt() - 1
  left = CharCnt()
  while (left > 65530 && i > 0)
    Select(i)
    if (GlyphInfo("Unicode") < 0)
      DetachAndRemoveGlyphs()
      left--
    endif
    i--
  endloop
  Generate($2, "", 0x0c)
endif)";

// In the units of the shell: seconds, kB, 512 bytes. A dated font would differ from run to run.
constexpr const char* CONVERT =
    "ulimit -c 0; ulimit -t 110; ulimit -v 3000000; ulimit -f 262144; "
    "exec env -i PATH=\"$PATH\" HOME=/dev/null LC_ALL=C SOURCE_DATE_EPOCH=0 ";
constexpr const char* AS_NOBODY =
    "setpriv --reuid=65534 --regid=65534 --clear-groups --inh-caps=-all --no-new-privs ";
constexpr const char* CONVERTER_COMMAND = "fontforge -quiet -lang=ff -c %s %s %s %s >/dev/null 2>&1";

/// A scratch file that goes with the object, unless it is kept.
class ScratchFile {
  public:
    explicit ScratchFile(std::string path) : path_(std::move(path)) {}
    ~ScratchFile() {
        if (!is_kept_) ::unlink(path_.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    Outcome create() {
        if (Outcome created = create_scratch_file(path_); !created) return created;
        file_ = Descriptor(::open(path_.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC));
        return file_.is_open() ? done() : Failure::of_system(path_, errno);
    }
    Outcome write(std::string_view bytes) {
        const int error = write_all(file_.get(), bytes);
        return error == 0 ? done() : Failure::of_system(path_, error);
    }
    /// Gives the file to nobody; false when this process may not.
    bool give_away() { return ::fchown(file_.get(), NOBODY, NOBODY) == 0; }
    void keep() { is_kept_ = true; }

  private:
    std::string path_;
    Descriptor file_;
    bool is_kept_ = false;
};

Failure not_converted(const std::string& path) {
    return {.subject = path, .reason = Reason::NOT_CONVERTED};
}

std::string new_scratch_name(std::string_view extension) {
    static unsigned number = 0;
    return (scratch_path(std::string(SCRATCH_ROOT) + "/converted-" + std::to_string(++number)) += extension);
}

/// What of the text goes through every encoding: FontForge reads its arguments in that of the locale.
std::string ascii_of(std::string text) {
    std::erase_if(text, [](char c) { return c < ' ' || c > '~'; });
    return text;
}

Outcome copy_font(const FontBytes& font, ScratchFile& copy) {
    constexpr std::size_t AT_ONCE = 1UL << 20U;
    if (Outcome created = copy.create(); !created) return created;
    for (std::size_t at = 0; at < font.size(); at += AT_ONCE) {
        const std::string part = font.part(at, AT_ONCE);
        if (part.size() != std::min(AT_ONCE, font.size() - at)) return Failure::of_system(font.path(), EIO);
        if (Outcome written = copy.write(part); !written) return written;
    }
    return done();
}

struct Arguments {
    std::string font;
    std::string made;
    std::string notice;
};

Outcome run_converter(const Arguments& arguments, bool as_nobody, const std::string& path) {
    const std::string command = std::string(CONVERT) + (as_nobody ? AS_NOBODY : "") + CONVERTER_COMMAND;
    const Outcome run =
        run_command(command, {SCRIPT, arguments.font, arguments.made, arguments.notice}, LONG_WORK);
    if (run) return done();
    switch (run.failure().reason) {
        case Reason::GIVEN_UP:
            return Failure{path, Reason::GIVEN_UP};
        case Reason::NO_ANSWER:
            return Failure{path, Reason::NOT_CONVERTED_IN_TIME};
        default:
            return Failure{path, Reason::NOT_CONVERTED};
    }
}

/// Numbers in a font's tables, the highest byte first.
class Tables {
  public:
    explicit Tables(std::string& bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint32_t number(std::size_t at, int count = 4) const {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 8U | static_cast<unsigned char>(bytes_[at + static_cast<std::size_t>(i)]);
        return value;
    }
    void put(std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) bytes_[at + i] = static_cast<char>(value >> (24U - 8U * i));
    }
    /// Where the table's entry in the directory is, if the table has at least `length` bytes.
    [[nodiscard]] std::optional<std::size_t> entry(std::string_view tag, std::size_t length) const {
        constexpr std::size_t HEAD = 12;
        constexpr std::size_t ENTRY = 16;
        if (bytes_.size() < HEAD) return std::nullopt;
        for (std::uint32_t i = 0; i < number(4, 2); ++i) {
            const std::size_t at = HEAD + i * ENTRY;
            if (at + ENTRY > bytes_.size()) return std::nullopt;
            if (bytes_.compare(at, tag.size(), tag) != 0) continue;
            const std::size_t offset = number(at + 8);
            const bool is_whole = offset <= bytes_.size() && length <= bytes_.size() - offset;
            return is_whole ? std::optional(at) : std::nullopt;
        }
        return std::nullopt;
    }
    [[nodiscard]] std::size_t table(std::size_t entry) const { return number(entry + 8); }

  private:
    std::string& bytes_;
};

/// Says in the font whether all its characters are equally wide. FontForge asks all glyphs, accents included;
/// mkfontscale would give the font other names for that.
bool set_fixed_pitch(std::string& font, bool is_fixed) {
    constexpr std::size_t FIXED_PITCH = 12;
    constexpr std::size_t SUM_ADJUSTMENT = 8;
    Tables tables(font);
    const std::optional<std::size_t> post = tables.entry("post", FIXED_PITCH + 4);
    const std::optional<std::size_t> head = tables.entry("head", SUM_ADJUSTMENT + 4);
    if (!post || !head) return false;
    const std::size_t place = tables.table(*post) + FIXED_PITCH;
    const std::uint32_t wanted = is_fixed ? 1 : 0;
    const std::uint32_t more = wanted - tables.number(place);
    tables.put(place, wanted);
    // The table grows by this, and so does its sum, which stands in the directory.
    tables.put(*post + 4, tables.number(*post + 4) + more);
    const std::size_t adjustment = tables.table(*head) + SUM_ADJUSTMENT;
    tables.put(adjustment, tables.number(adjustment) - 2 * more);
    return true;
}

/// Whether the file is a TrueType font with the characters of the original. FontForge reports success also
/// for a font that it could not write.
bool is_conversion_of(const FontFace& original, const std::string& made) {
    const Result<FontFace> face = FontFace::open(made);
    if (!face || face->facts().format != FontFormat::TRUETYPE) return false;
    if (!original.has_unicode()) return true;
    const std::vector<FontFace::Character> wanted = original.characters();
    return std::all_of(wanted.begin(), wanted.end(), [&](const auto& one) { return face->has(one.code); });
}

/// Puts what FontForge has made into a file that only this user can change, and looks at it there.
Outcome take_over(const std::string& made, const FontFace& original, const std::string& path,
                  ScratchFile& result) {
    Result<std::string> bytes = read_file(made);
    if (!bytes) return not_converted(path);
    if (!set_fixed_pitch(*bytes, original.facts().fixed_pitch)) return not_converted(path);
    if (Outcome created = result.create(); !created) return created;
    if (Outcome written = result.write(*bytes); !written) return written;
    return is_conversion_of(original, result.path()) ? done() : not_converted(path);
}

Outcome may_be_converted(const FaceFacts& facts, const std::string& path) {
    if (facts.format != FontFormat::OPENTYPE_CFF) return Failure{path, Reason::NOTHING_TO_CONVERT};
    if (!facts.may_be_changed) return Failure{path, Reason::MAY_NOT_BE_CONVERTED};
    return done();
}

/// The font as FontForge takes it: one of a collection has its number behind the path.
std::string argument_for(const ScratchFile& copy, long faces, int face) {
    return faces > 1 ? copy.path() + '(' + std::to_string(face) + ')' : copy.path();
}

Result<std::string> convert(const FontBytes& bytes, const FontFace& original, int face) {
    const std::string& path = bytes.path();
    ScratchFile copy(new_scratch_name(".otf"));
    ScratchFile made(new_scratch_name(CONVERTED_EXTENSION));
    if (const Outcome copied = copy_font(bytes, copy); !copied) return copied.failure();
    if (const Outcome created = made.create(); !created) return created.failure();
    // Fails for a superuser who has no power over others, and then FontForge has none either.
    const bool as_nobody = ::geteuid() == 0 && copy.give_away() && made.give_away();
    const std::string font = argument_for(copy, original.facts().faces, face);
    const std::string notice = ascii_of(original.facts().notice);
    if (const Outcome run = run_converter({font, made.path(), notice}, as_nobody, path); !run)
        return run.failure();
    ScratchFile result(new_scratch_name(CONVERTED_EXTENSION));
    if (const Outcome taken = take_over(made.path(), original, path, result); !taken) return taken.failure();
    result.keep();
    return result.path();
}

}  // namespace

Outcome can_convert() {
    if (run_command("command -v %s >/dev/null", {CONVERTER}, MOMENTS)) return done();
    return Failure{.subject = CONVERTER, .reason = Reason::CONVERTER_MISSING, .detail = CONVERTER_PACKAGE};
}

Result<std::string> convert_outlines(const std::string& path, int face) {
    if (const Outcome possible = can_convert(); !possible) return possible.failure();
    Result<FontBytes> opened = FontBytes::open(path);
    if (!opened) return opened.failure();
    const auto bytes = std::make_shared<const FontBytes>(std::move(*opened));
    const Result<FontFace> original = FontFace::open(bytes, face);
    if (!original) return original.failure();
    if (const Outcome allowed = may_be_converted(original->facts(), path); !allowed) return allowed.failure();
    return convert(*bytes, *original, face);
}

}  // namespace gw
