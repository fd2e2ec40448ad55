// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "core/text.h"
#include "fontfiles/font_verdict.h"
#include "texts/reasons.h"

#include "glyphward-fonts/commands.h"

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

Message word_for(Verdict::Kind kind) {
    switch (kind) {
        case Verdict::Kind::OK:
            return Message::SAYS_GOOD;
        case Verdict::Kind::DAMAGED:
            return Message::SAYS_DAMAGED;
        case Verdict::Kind::NOT_A_FONT:
            return Message::SAYS_NO_FONT;
        case Verdict::Kind::EMPTY:
            return Message::SAYS_EMPTY;
        case Verdict::Kind::NOT_FOR_SERVERS:
            return Message::SAYS_NOT_FOR_SERVERS;
        case Verdict::Kind::UNREADABLE:
            break;
    }
    return Message::SAYS_UNREADABLE;
}

bool looks_like_a_font(const fs::path& path) {
    static const std::set<std::string> EXTENSIONS = {".pfa",    ".pfb", ".ttf",   ".ttc",
                                                     ".otf",    ".otc", ".pcf",   ".pcf.Z",
                                                     ".pcf.gz", ".bdf", ".bdf.Z", ".bdf.gz"};
    return EXTENSIONS.contains(font_extension(path.filename().string()));
}

/// Font files in and below a directory.
struct Below {
    std::vector<std::string> fonts;
    bool is_whole = true;  ///< false when something could not be looked into, which is a trouble then
};

/// Those with the extension of a font. Links to directories are not followed.
void look_below(const std::string& directory, Below& below, Report& report) {
    std::error_code error;
    for (auto entry = fs::directory_iterator(directory, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code gone;
        const bool is_directory = entry->is_directory(gone) && !entry->is_symlink(gone);
        // Our own directory has what was taken out.
        if (is_directory && entry->path().filename() != ".glyphward")
            look_below(entry->path().string(), below, report);
        if (entry->is_regular_file(gone) && looks_like_a_font(entry->path()))
            below.fonts.push_back(entry->path().string());
    }
    if (!error) return;
    report.trouble(Failure::of_system(directory, error.value()));
    below.is_whole = false;
}

}  // namespace

Status verify(const std::vector<std::string>& files, Report& report) {
    Tally tally;
    Json verdicts = Json::array();
    const auto look_at = [&](const std::string& path) {
        const Verdict verdict = judge(path);
        const bool is_good = verdict.kind == Verdict::Kind::OK;
        is_good ? tally.done() : tally.failed();
        if (report.settings().nul) {
            report.record(path);
        } else {
            report.line(escaped(path) + ": " + text_of(word_for(verdict.kind)) +
                        (is_good ? "" : " (" + escaped(reason_in_language(verdict.why)) + ')'));
        }
        Json entry = {{"file", in_json(path)}, {"verdict", english_text_of(word_for(verdict.kind))}};
        if (!is_good) entry["reason"] = in_json(reason_in_language(verdict.why));
        verdicts.push_back(entry);
    };
    for (const std::string& file : files) {
        std::error_code error;
        if (!fs::is_directory(file, error)) {
            look_at(file);
            continue;
        }
        Below below;
        look_below(file, below, report);
        if (below.is_whole && below.fonts.empty()) report.trouble(file, Message::SAYS_NO_FILES_IN_IT);
        if (!below.is_whole || below.fonts.empty()) tally.failed();
        std::sort(below.fonts.begin(), below.fonts.end());
        for (const std::string& font : below.fonts) look_at(font);
    }
    report.document()["files"] = verdicts;
    return tally.status();
}

}  // namespace gw::fonts
