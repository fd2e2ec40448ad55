// SPDX-License-Identifier: MIT
#include "core/pattern.h"

#include <regex.h>

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
    compiled_ = std::make_unique<Compiled>();
    compiled_->expression = expression;
}

Pattern::~Pattern() = default;

std::optional<Pattern::Match> Pattern::find(const char* s) const {
    regmatch_t match{};
    if (!compiled_ || ::regexec(&compiled_->expression, s, 1, &match, 0) != 0) return std::nullopt;
    return Match{static_cast<std::size_t>(match.rm_so), static_cast<std::size_t>(match.rm_eo)};
}

}  // namespace gw
