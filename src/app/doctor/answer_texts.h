// SPDX-License-Identifier: MIT
//
// What the window "Why Is a Font Missing?" shows of an answer, as texts in the user's language.
#pragma once

#include <string>
#include <vector>

#include "app/kit/state_list.h"
#include "diagnosis/answer.h"

namespace gw {

/// All sentences, one after the other.
[[nodiscard]] std::string in_words(const std::vector<diagnosis::Sentence>& sentences);

/// The verdict, with what the message means before it, unless that is over. What concerns the server as a
/// whole stands first.
[[nodiscard]] std::string verdict_text(const diagnosis::Answer& answer, bool is_over = false);

/// One line for each element of the font path, in order; and everything that is to be said of one.
[[nodiscard]] std::vector<StateLine> path_lines(const diagnosis::Answer& answer);
[[nodiscard]] std::string remarks_text(const diagnosis::ElementReport& element);

/// One line for each font; and what one has instead of what was asked for, and where it is.
[[nodiscard]] std::vector<StateLine> near_lines(const std::vector<diagnosis::NearFont>& fonts);
[[nodiscard]] std::string near_text(const diagnosis::NearFont& font);

/// One line for each cure.
[[nodiscard]] std::vector<StateLine> cure_lines(const std::vector<diagnosis::Cure>& cures);

/// One line for each package.
[[nodiscard]] std::vector<std::string> package_lines(const std::vector<diagnosis::PackageHint>& packages);

/// One line for each charset; and what would cover one that nothing covers.
[[nodiscard]] std::vector<StateLine> charset_lines(const diagnosis::Answer& answer);
[[nodiscard]] std::string coverage_text(const diagnosis::CharsetCoverage& charset);

/// What is said when a cure was carried out and the server was asked again.
[[nodiscard]] std::string outcome_text(const diagnosis::Answer& answer);

}  // namespace gw
