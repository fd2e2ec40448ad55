// SPDX-License-Identifier: MIT
//
// An X server that a test plays: it has the font path, the fonts and the manners that the test gives it, and
// remembers what it was asked.
#pragma once

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "fontpath/server_view.h"

namespace gw::test {

class PlayedServer : public ServerView {
  public:
    struct Font {
        std::string name;        ///< as it is listed; an alias is listed, too
        OpenedFont opened = {};  ///< its name is `name`, unless it has one of its own
        bool can_be_opened = true;
        bool is_listed = true;
    };

    // What it is like.
    std::vector<std::string> path;
    std::vector<Font> fonts;
    std::map<std::string, OpenedFontset> fontsets;  ///< by base names
    ServerPlace where = ServerPlace::HERE;
    std::optional<uid_t> runs_as = 0;
    std::vector<gid_t> its_groups = {0};
    std::set<std::string> refused;                    ///< elements that it does not take
    int lives_for = std::numeric_limits<int>::max();  ///< it dies before the question with this number

    // What it was asked.
    std::vector<std::string>
        asked;  ///< patterns and names, in order: "names PATTERN", "open NAME", "set NAMES"
    int path_changes = 0;

    void add(const std::string& name) { fonts.push_back({name}); }
    /// An alias: opening it gives the font `target`.
    void add_alias(const std::string& alias, const std::string& target) {
        Font font{alias};
        font.opened.name = target;
        fonts.push_back(font);
    }

    bool answers() override { return is_alive(); }
    ServerPlace place() override { return where; }
    std::optional<uid_t> user() override { return runs_as; }
    std::vector<gid_t> groups() override { return its_groups; }

    std::vector<std::string> font_path() override {
        return hears("font path") ? path : std::vector<std::string>();
    }

    std::vector<std::string> names(const std::string& pattern, int most) override {
        std::vector<std::string> found;
        if (!hears("names " + pattern)) return found;
        for (const Font& font : fonts) {
            if (static_cast<int>(found.size()) == most) break;
            if (font.is_listed && matches(lower_case(pattern), lower_case(font.name)))
                found.push_back(font.name);
        }
        return found;
    }

    std::optional<OpenedFont> open(const std::string& name) override {
        if (!hears("open " + name)) return {};
        for (const Font& font : fonts) {
            if (!matches(lower_case(name), lower_case(font.name))) continue;
            if (!font.can_be_opened) return {};
            OpenedFont opened = font.opened;
            if (opened.name.empty()) opened.name = font.name;
            return opened;
        }
        return {};
    }

    OpenedFontset open_fontset(const std::string& base_names) override {
        if (!hears("set " + base_names)) return {};
        const auto found = fontsets.find(base_names);
        return found == fontsets.end() ? OpenedFontset() : found->second;
    }

    Outcome set_font_path(const std::vector<std::string>& elements) override {
        if (!hears("set path")) return Failure{"played", Reason::NO_X_SERVER};
        for (const std::string& element : elements) {
            if (refused.contains(element)) return Failure{element, Reason::REFUSED_BY_SERVER};
        }
        path = elements;
        ++path_changes;
        return done();
    }

    /// Whether a pattern with "*" and "?" matches; both in lower case.
    static bool matches(std::string_view pattern, std::string_view name) {
        constexpr std::size_t NONE = std::string_view::npos;
        std::size_t at = 0;
        std::size_t star = NONE;
        std::size_t resume = 0;
        for (std::size_t i = 0; i < name.size();) {
            if (at < pattern.size() && pattern[at] == '*') {
                star = at++;
                resume = i;
            } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[i])) {
                ++at;
                ++i;
            } else if (star != NONE) {
                at = star + 1;
                i = ++resume;
            } else {
                return false;
            }
        }
        return pattern.find_first_not_of('*', at) == NONE;
    }

  private:
    [[nodiscard]] bool is_alive() const { return questions_ < lives_for; }
    bool hears(const std::string& question) {
        if (!is_alive()) return false;
        ++questions_;
        asked.push_back(question);
        return is_alive();
    }
    int questions_ = 0;
};

}  // namespace gw::test
