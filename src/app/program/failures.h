// SPDX-License-Identifier: MIT
//
// Texts for failures: on standard error, and in the user's language for the windows.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/font_report.h"

namespace gw {

/// Prints one line to standard error.
void say_on_standard_error(const Failure& failure);

/// The program's listener for failures: prints one line to standard error, and gathers the failure for the
/// window that will sum the work up.
void hear_failure(const Failure& failure);
/// The same for each font that is new in the report.
void hear_new_failures(FontReport& report);

/// A failure in the user's language, its control characters escaped.
struct FailureText {
    std::string what;  ///< a font, or a file or directory
    std::string why;
    std::vector<std::string> more;  ///< the file or name that the failure of a font is about; what follows
};
/// What was gathered since the last `forget_failures`, in order.
const std::vector<FailureText>& gathered_failure_texts();
/// Failures as lines: what and why, and the rest in indented lines of their own.
std::vector<std::string> lines_of(const std::vector<FailureText>& failures);
/// What was gathered as lines.
std::vector<std::string> gathered_failures();
void forget_failures();

/// What the user should know of fonts that were installed, a line for each remark in the report.
std::vector<std::string> remark_lines(const FontReport& report);

/// The last failure that was heard of one of our scratch places, because somebody else has it, as a line for
/// a status line; "" when there was none since the last call. It is told whatever else windows tell: without
/// the place nothing can be listed, or given to the server.
std::string take_scratch_failure();

/// What the list of installed fonts lacks, heard since the last call, in one line for a status line; "" when
/// it lacks nothing. It is told whatever else windows tell.
std::string take_listing_failures();

/// For a window, in the user's language: what and why.
std::string failure_line(const Failure& failure);
/// The same without what it is about.
std::string reason_in_words(const Failure& failure);

}  // namespace gw
