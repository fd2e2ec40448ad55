// SPDX-License-Identifier: MIT
#include "diagnosis/comment_cure.h"

#include <algorithm>

#include "core/text.h"
#include "diagnosis/alias_edit.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"
#include "fontfiles/alias_text.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

/// What was done to the text.
struct Commented {
    std::string before;
    std::string after;
    std::vector<int> lines;
};

Result<Commented> comment_out_in(const std::string& directory, const std::vector<AliasOfFont>& unwanted) {
    Commented done;
    const Outcome edited =
        edit_aliases(directory, false, [&](const std::string& text) -> Result<std::string> {
            CommentedAliases commented = with_comments(text, unwanted);
            done = {text, commented.text, std::move(commented.lines)};
            return std::move(commented.text);
        });
    if (!edited) return edited.failure();
    return done;
}

/// Puts the old text back, unless somebody has written the file since.
Outcome put_back(const std::string& directory, const Commented& done) {
    return edit_aliases(directory, false, [&](const std::string& text) -> Result<std::string> {
        if (text != done.after) return Failure{directory + ALIAS_FILE_NAME, Reason::CHANGED_SINCE};
        return done.before;
    });
}

}  // namespace

std::string line_numbers(const std::vector<int>& lines) {
    constexpr std::size_t SHOWN = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(lines.size(), SHOWN); ++i)
        text.append(i == 0 ? "" : ", ").append(std::to_string(lines[i]));
    return lines.size() > SHOWN ? text + ", ..." : text;
}

Result<Deed> comment_out(const Cure& cure, ServerView& server, const Surroundings& surroundings) {
    const std::string directory = with_trailing_slash(cure.element);
    const std::string file = directory + ALIAS_FILE_NAME;
    const Result<Commented> done = comment_out_in(directory, cure.aliases);
    if (!done) return done.failure();
    Deed deed{{Said::DONE_COMMENTED, {file, line_numbers(done->lines)}}, {}, {}};
    if (done->lines.empty()) deed.what = {Said::NO_LINE_AT_FAULT, {file}};
    const auto added = update(server, directory, surroundings.configured, deed.remarks);
    deed.undo = once(file, [directory, done = *done, added, &server]() -> Outcome {
        Outcome back = put_back(directory, done);
        if (back) look_again(server, added);
        return back;
    });
    return deed;
}

}  // namespace gw::diagnosis
