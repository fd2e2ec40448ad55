// SPDX-License-Identifier: MIT
#include "core/pattern.h"

#include <regex.h>

#include <algorithm>

namespace gw {

struct Pattern::Compiled {
    regex_t expression{};
    Compiled() = default;
    ~Compiled() { ::regfree(&expression); }
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
};

Pattern::Pattern(const std::string& pattern) {
    regex_t expression{};
    if (::regcomp(&expression, pattern.c_str(), 0) != 0) return;
    const auto is_simple = [](char c) {
        return c == '.' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    };
    if (pattern.size() > 1 && pattern.ends_with('$') &&
        std::all_of(pattern.begin(), pattern.end() - 1, is_simple))
        end_ = pattern.substr(0, pattern.size() - 1);
    compiled_ = std::make_unique<Compiled>();
    compiled_->expression = expression;
}

Pattern::~Pattern() = default;

// A directory of ten thousand fonts asks for the ends of as many names, and the matcher takes its time.
std::optional<Pattern::Match> Pattern::find_at_end(std::string_view s) const {
    if (s.size() < end_.size()) return std::nullopt;
    const std::string_view end = s.substr(s.size() - end_.size());
    const bool is_match = std::equal(end.begin(), end.end(), end_.begin(),
                                     [](char c, char wanted) { return wanted == '.' || c == wanted; });
    return is_match ? std::optional<Match>({s.size() - end.size(), s.size()}) : std::nullopt;
}

std::optional<Pattern::Match> Pattern::find(const char* s) const {
    // What a character of another alphabet is, the locale says.
    const std::string_view text(s);
    if (!end_.empty() &&
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return find_at_end(text);
    regmatch_t match{};
    if (!compiled_ || ::regexec(&compiled_->expression, s, 1, &match, 0) != 0) return std::nullopt;
    return Match{static_cast<std::size_t>(match.rm_so), static_cast<std::size_t>(match.rm_eo)};
}

}  // namespace gw
