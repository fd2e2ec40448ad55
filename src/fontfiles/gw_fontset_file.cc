// SPDX-License-Identifier: MIT
#include "fontfiles/gw_fontset_file.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "core/replace_file.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace {

constexpr std::size_t LONGEST_PIECE = GW_FONTSET_FILE::LINE_BUFFER - 1;
constexpr std::string_view NAME_LINE_END = "definition,\\";

/// Calls `take(piece)` for each line, its newline included. A line that is longer than the buffer is passed
/// in pieces, as `get_line` would return it.
template <class Take>
void for_each_line(std::string_view bytes, Take take) {
    while (!bytes.empty()) {
        const std::size_t newline = bytes.find('\n');
        const std::size_t length = newline == std::string_view::npos ? bytes.size() : newline + 1;
        const std::string_view piece = bytes.substr(0, std::min(length, LONGEST_PIECE));
        take(piece);
        bytes.remove_prefix(piece.size());
    }
}

/// The part of a line that readers see: everything before a NUL byte.
std::string_view text_of(std::string_view line) {
    return line.substr(0, line.find('\0'));
}

/// The fontset name in a line that begins with "-"; nothing when it names none.
std::optional<std::string> fontset_name(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(0, colon));
}

/// Appends the base font that the line names, if any, to `fontset`. False when the definition ends with it.
bool take_base_font(GWFontSet& fontset, std::string_view text) {
    const std::size_t dash = text.find('-');
    if (text.find(NAME_LINE_END) != std::string_view::npos || dash == std::string_view::npos) return true;
    text.remove_prefix(dash);
    const std::size_t comma = text.rfind(',');
    text = text.substr(0, comma);
    const bool is_last = text.ends_with('\n');
    if (is_last) text.remove_suffix(text.ends_with("\r\n") ? 2 : 1);
    fontset.append_base_font(std::string(text).c_str());
    return !is_last;
}

std::string appended(std::string bytes, const std::string& definition) {
    // A last line without a newline would be joined to the name.
    if (!bytes.empty() && !bytes.ends_with('\n')) bytes += '\n';
    return bytes + definition;
}

std::string without_fontset(std::string_view bytes, const std::string& unwanted) {
    std::string kept;
    bool skips = false;
    for_each_line(bytes, [&](std::string_view line) {
        const std::string_view text = text_of(line);
        if (text.starts_with('!')) skips = false;
        // Kept: deleting a fontset removes all definitions of its name.
        if (text.starts_with('-')) skips = fontset_name(text) == unwanted;
        if (!skips) kept.append(line);
    });
    return kept;
}

}  // namespace

GW_FONTSET_FILE::GW_FONTSET_FILE(const char* file_dir, const char* file_name, int type)
    : GW_FILE(file_name, file_dir, type) {
    const gw::Result<std::string> bytes = gw::read_file(get_path());
    if (!bytes && exist() != 0) reading = bytes.failure();
    if (bytes) read_fontsets(*bytes);
    // In that directory the scratch file would be this file itself.
    if (is_in_directory(gw::scratch_path(gw::SCRATCH_ROOT).c_str())) work.keep_in_memory();
    if (bytes) on_disk = *bytes;
    work.set_bytes(on_disk);
}

GW_FONTSET_FILE::~GW_FONTSET_FILE() {
    for (GWFontSet* fontset : fontsets) gw::Ref<GWFontSet>::adopt(fontset);
}

void GW_FONTSET_FILE::read_fontsets(std::string_view bytes) {
    GWFontSet* current = nullptr;
    for_each_line(bytes, [&](std::string_view line) {
        const std::string_view text = text_of(line);
        if (text.starts_with('-')) {
            const std::optional<std::string> named = fontset_name(text);
            if (!named) return;
            gw::Ref<GWFontSet> fontset(new GWFontSet(named->c_str()));
            current = fontset.get();
            fontsets.append(current);
            fontset.leave();
        } else if (current != nullptr && (text.starts_with('!') || !take_base_font(*current, text))) {
            current = nullptr;
        }
    });
}

GWFontSet* GW_FONTSET_FILE::get_fontset(const char* wanted) const {
    for (GWFontSet* fontset : fontsets) {
        if (std::strcmp(fontset->get_name(), wanted) == 0) return fontset;
    }
    return nullptr;
}

int GW_FONTSET_FILE::append_fontset(GWFontSet* fontset) {
    gw::Ref<GWFontSet> owned(fontset);
    fontsets.append(fontset);
    owned.leave();
    edit({"", fontset->definition()});
    return 1;
}

int GW_FONTSET_FILE::delete_fontset(const GWFontSet* fontset) {
    const std::string unwanted = fontset->get_name();
    int pos = 1;
    for (const GWFontSet* listed : fontsets) {
        if (fontset->equal(listed) != 0) break;
        ++pos;
    }
    GWFontSet* removed = fontsets.zap_elem_at_pos(pos);
    if (removed != nullptr) deleted.push_back(gw::Ref<GWFontSet>::adopt(removed));

    edit({unwanted, ""});
    return removed != nullptr ? 1 : 0;
}

void GW_FONTSET_FILE::edit(Edit change) {
    work.set_bytes(edited(work.get_bytes(), change));
    edits.push_back(std::move(change));
}

std::string GW_FONTSET_FILE::edited(const std::string& bytes, const Edit& change) {
    if (!change.added.empty()) return appended(bytes, change.added);
    return without_fontset(bytes, change.removed);
}

/// Makes the changes to what another process has written meanwhile. What it has written and cannot be read
/// must not be lost.
gw::Outcome GW_FONTSET_FILE::follow_the_file() {
    const gw::Result<std::string> now = gw::read_file(get_path());
    if (!now) return now.failure().is_absence() ? gw::done() : gw::Outcome(now.failure());
    if (*now == on_disk) return gw::done();
    std::string bytes = *now;
    for (const Edit& change : edits) bytes = edited(bytes, change);
    work.set_bytes(bytes);
    return gw::done();
}

gw::Outcome GW_FONTSET_FILE::put_in_place() {
    if (!reading) return reading.with(gw::Sequel::FONTSETS_STAY);
    // Kept: fontsets are always written under one file name.
    const std::string target = std::string(get_dir()) + work.get_name();
    if (target == get_path()) {
        if (gw::Outcome followed = follow_the_file(); !followed)
            return followed.with(gw::Sequel::FONTSETS_STAY);
    }
    gw::Outcome written = gw::replace_file(target, work.get_bytes());
    if (!written) return written.with(gw::Sequel::FONTSETS_STAY);
    on_disk = work.get_bytes();
    edits.clear();
    return written;
}

int GW_FONTSET_FILE::sync() {
    return gw::tell_unless_done(put_in_place()) ? 1 : 0;
}
