// SPDX-License-Identifier: MIT
#include "diagnosis/packages.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>

#include "diagnosis/xlfd_fields.h"
#include "platform/host_paths.h"
#include "platform/package_owner.h"

namespace gw::diagnosis {

namespace {

/// A row of the table. Those of a package follow its name.
struct Row {
    enum class Kind { PACKAGE, FACE, ALIASES } kind;
    std::string_view text;           // the package; the first six fields, with their hyphens; the aliases
    std::string_view sizes = {};     // six fields each, with blanks between them
    std::string_view charsets = {};  // with blanks between them
};

constexpr auto TABLE = std::to_array<Row>({
#define PACKAGE(name) {Row::Kind::PACKAGE, name},
#define FACE(face, sizes, charsets) {Row::Kind::FACE, face, sizes, charsets},
#define ALIASES(names) {Row::Kind::ALIASES, names},
#include "diagnosis/font_packages.def"
#undef PACKAGE
#undef FACE
#undef ALIASES
});

constexpr std::string_view EVERY_SIZE = "0-0-0-0-";

std::string_view take_word(std::string_view& words) {
    const std::size_t end = std::min(words.find(' '), words.size());
    const std::string_view word = words.substr(0, end);
    words.remove_prefix(std::min(end + 1, words.size()));
    return word;
}

/// What is looked for in the table.
class Search {
  public:
    explicit Search(const std::string& wanted) : _wanted(wanted), _fields(fields_of_pattern(wanted)) {}

    /// The name in this row that is wanted; "" if there is none.
    [[nodiscard]] std::string name_in(const Row& row) const {
        if (row.kind == Row::Kind::FACE) return _fields ? name_of_face(row) : "";
        return row.kind == Row::Kind::ALIASES && !_fields ? alias_in(row.text) : "";
    }

  private:
    [[nodiscard]] std::string alias_in(std::string_view aliases) const {
        while (!aliases.empty()) {
            const std::string_view alias = take_word(aliases);
            if (matches(alias, _wanted)) return std::string(alias);
        }
        return "";
    }

    [[nodiscard]] std::string name_of_face(const Row& row) const {
        std::string name;
        for (std::string_view charsets = row.charsets; !charsets.empty();) {
            const std::string_view charset = take_word(charsets);
            for (std::string_view sizes = row.sizes; !sizes.empty();) {
                const std::string_view size = take_word(sizes);
                name.assign(row.text).append(size).append("-").append(charset);
                if (size.starts_with(EVERY_SIZE) ? is_outline_wanted(name) : matches(name, _wanted))
                    return name;
            }
        }
        return "";
    }

    /// The sizes of an outline are those that are asked for.
    [[nodiscard]] bool is_outline_wanted(const std::string& name) const {
        const XlfdFields fields = fields_of(name).value_or(XlfdFields());
        for (std::size_t i = 0; i < XLFD_FIELDS; ++i) {
            const auto field = static_cast<Field>(i);
            const bool is_size =
                field >= Field::PIXELS && field <= Field::AVERAGE_WIDTH && field != Field::SPACING;
            if (!is_size && !matches(fields[i], (*_fields)[i])) return false;
        }
        return true;
    }

    const std::string& _wanted;
    std::optional<XlfdFields> _fields;
};

std::string command_for(const std::string& package) {
    if (::access(APT, F_OK) != 0) return "";
    return std::string(::geteuid() == 0 ? "" : "sudo ") + "apt install " + package;
}

/// Asks about all packages of the table at once, when the first one is in question.
bool dpkg_has(const std::string& package, std::optional<std::set<std::string>>& installed) {
    if (!installed) {
        std::vector<std::string> all;
        for (const Row& row : TABLE)
            if (row.kind == Row::Kind::PACKAGE) all.emplace_back(row.text);
        installed = installed_packages(all);
    }
    return installed->contains(package);
}

}  // namespace

std::vector<PackageHint> packages_for(const std::string& wanted, std::size_t most,
                                      const IsInstalled& is_installed) {
    std::vector<PackageHint> hints;
    const Search search(wanted);
    std::string package;
    std::optional<std::set<std::string>> installed;
    bool is_done = true;  // with the rows of this package
    for (const Row& row : TABLE) {
        if (hints.size() >= most) break;
        if (row.kind == Row::Kind::PACKAGE) {
            package = row.text;
            is_done = false;
            continue;
        }
        std::string name = is_done ? "" : search.name_in(row);
        if (name.empty()) continue;
        is_done = true;
        if (!(is_installed ? is_installed(package) : dpkg_has(package, installed)))
            hints.push_back({package, command_for(package), std::move(name)});
    }
    return hints;
}

std::vector<PackageHint> packages_for_charset(const std::string& charset, std::size_t most,
                                              const IsInstalled& is_installed) {
    return packages_for("-*-*-*-*-*-*-*-*-*-*-*-*-" + charset, most, is_installed);
}

}  // namespace gw::diagnosis
