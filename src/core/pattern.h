// SPDX-License-Identifier: MIT
//
// A compiled pattern. Only this file calls the pattern matcher of POSIX (`regcomp` and `regexec`).
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace gw {

/// A compiled pattern. "." matches any character, "$" anchors at the end; other characters of file names
/// match themselves.
class Pattern {
  public:
    struct Match {
        std::size_t start;
        std::size_t end;  ///< just after the match
    };

    explicit Pattern(const std::string& pattern);
    ~Pattern();
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    /// The first match in `s`; no value when there is none, or when the pattern could not be compiled.
    [[nodiscard]] std::optional<Match> find(const char* s) const;

  private:
    [[nodiscard]] std::optional<Match> find_at_end(std::string_view s) const;

    struct Compiled;
    std::string end_;  // of a pattern that is one end of a name, without the "$"; else empty
    std::unique_ptr<Compiled> compiled_;
};

}  // namespace gw
