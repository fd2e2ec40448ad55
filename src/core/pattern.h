// SPDX-License-Identifier: MIT
//
// A compiled pattern. Only this file calls the pattern matcher of POSIX (`regcomp` and `regexec`).
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

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
    struct Compiled;
    std::unique_ptr<Compiled> compiled_;
};

}  // namespace gw
