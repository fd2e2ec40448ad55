// SPDX-License-Identifier: MIT
//
// What happened to each font of a change. It is told when the change is final, and not before: what looked
// done can still fail.
#pragma once

#include <string>
#include <vector>

#include "model/font_report.h"

#include "glyphward-fonts/report.h"

namespace gw::fonts {

class FontNotes {
  public:
    enum class Result {
        INSTALLED,
        WOULD_BE_INSTALLED,
        REPLACED,
        WOULD_BE_REPLACED,
        DELETED,
        WOULD_BE_DELETED,
        ALREADY_THERE,
        KEPT,
        FAILED,
    };
    struct Note {
        std::string font;  ///< as lists show it, without marks
        Result result;
        std::string why = {};
        Json code = Json::object();           ///< see `in_code`
        std::vector<std::string> files = {};  ///< paths of the files that were to be installed
        /// Whether something was done to the font, or would be.
        [[nodiscard]] bool is_change() const { return result < Result::ALREADY_THERE; }
    };

    void add(const Note& note) { notes_.push_back(note); }
    /// What could not be made final: what was noted for these fonts did not come to pass.
    void fail(const std::vector<FontReport::Entry>& fonts);
    /// Whether something was done, or would be.
    [[nodiscard]] bool has_change() const;
    [[nodiscard]] const std::vector<Note>& all() const { return notes_; }
    /// A line for each font, and "fonts" and "changed" in the document.
    void tell(Report& report) const;

  private:
    std::vector<Note> notes_;
};

/// The result that stands in a document in English, in the user's language; as it is where it is none of
/// ours.
[[nodiscard]] std::string result_in_language(const std::string& result);

/// The name of a row without the marks that stand in a column of their own behind it.
[[nodiscard]] std::string without_marks(const std::string& shown);

}  // namespace gw::fonts
