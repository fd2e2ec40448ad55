// SPDX-License-Identifier: MIT
//
// What a user's actions must leave in font directories. The model knows nothing of the engine: it has its own
// rules for what is installed, and reads the disk itself.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace gw::soak {

/// A font that can be installed.
struct Font {
    std::string file;
    std::string xlfd;
    std::string shown;  ///< its name in lists; sizes of one face have the same
    std::string bytes;  ///< of its file in the source
    /// All its names in an index; none when `xlfd` is the only one.
    std::vector<std::string> names = {};
};

/// The fonts of a source, by their names in lists.
using Source = std::map<std::string, Font>;

class FontModel {
  public:
    /// With `exact` false an outline is copied as text, which adds a byte.
    FontModel(std::vector<std::string> directories, bool exact);

    enum class Answer { INSTALLED, CONFLICT, REFUSED };
    /// The user installs a font: a conflict when a font of that name is installed anywhere, refused when the
    /// directory has another font's file of that name.
    Answer install(const Font& font, const std::string& directory);
    /// The user decides for the new font: the old one of its name goes. False, and the old one stays, when
    /// the new one is refused.
    bool replace(const Font& font, const std::string& directory);
    void remove(const std::string& shown);

    /// The names that must be listed, sorted.
    [[nodiscard]] std::vector<std::string> shown() const;
    [[nodiscard]] bool has(const std::string& xlfd) const;
    [[nodiscard]] std::vector<std::string> bitmaps() const;
    /// How the disk differs from what it must be, a line each; nothing when it does not.
    [[nodiscard]] std::vector<std::string> differences() const;

  private:
    using Directory = std::map<std::string, Font>;  // by file name

    [[nodiscard]] std::vector<std::string> differences_in(const std::string& path,
                                                          const Directory& expected) const;
    [[nodiscard]] std::string installed_bytes(const Font& font) const;

    std::map<std::string, Directory> directories_;
    bool exact_;
};

bool is_outline(const Font& font);
/// The bytes of a file; empty when it is missing.
std::string bytes_of(const std::string& path);
/// The lines of a text, without their newlines.
std::vector<std::string> lines_of(const std::string& text);

}  // namespace gw::soak
