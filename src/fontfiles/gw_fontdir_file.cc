// SPDX-License-Identifier: MIT
//
// Edits are computed on the bytes of the whole file and put in place with one atomic write, so that a line
// and the count that includes it reach the disk together.
#include "fontfiles/gw_fontdir_file.h"

#include <algorithm>
#include <utility>

#include "core/replace_file.h"
#include "fontfiles/index_text.h"
#include "platform/host_paths.h"

namespace {

constexpr mode_t INDEX_MODE = 0644;

}  // namespace

GW_FONTDIR_FILE::GW_FONTDIR_FILE(const char* index_dir, int type)
    : GW_FILE(gw::FONT_INDEX_NAME, index_dir, type) {}

gw::Outcome GW_FONTDIR_FILE::make() {
    // The X server rejects a directory whose index is an empty file, which is what a full disk would leave.
    return exist() == 0 ? gw::replace_file(get_path(), "0\n", INDEX_MODE) : gw::done();
}

int GW_FONTDIR_FILE::create() {
    (void)make();
    return 1;
}

int GW_FONTDIR_FILE::get_font_count() {
    if (open("r") == 0) return -1;
    char line[LINE_BUFFER] = "";
    const char* first = get_line(line, sizeof line);
    close();
    return first != nullptr ? gw::index_count(first) : 0;
}

GW_FONTDIR_FILE::Contents::Contents(gw::Result<std::string> bytes)
    : is_there(bytes),
      text(is_there ? std::move(*bytes) : std::string()),
      entries(gw::index_entry_views(text)) {
    // Readers take a line for a text that ends at its first NUL.
    if (text.find('\0') == std::string::npos) return;
    for (gw::IndexEntryView& entry : entries) {
        entry.font_name = entry.file_name.find('\0') == std::string_view::npos
                              ? entry.font_name.substr(0, entry.font_name.find('\0'))
                              : std::string_view();
        entry.file_name = entry.file_name.substr(0, entry.file_name.find('\0'));
    }
}

std::shared_ptr<const GW_FONTDIR_FILE::Contents> GW_FONTDIR_FILE::contents() {
    return as_it_was_read ? as_it_was_read : std::make_shared<const Contents>(gw::read_file(get_path()));
}

GW_FONTDIR_FILE::Reading::Reading(GW_FONTDIR_FILE& the_index)
    : index(the_index), before(the_index.as_it_was_read) {
    index.as_it_was_read = index.contents();
}

GW_FONTDIR_FILE::Reading::~Reading() {
    index.as_it_was_read = before;
}

bool GW_FONTDIR_FILE::get_entries(std::vector<Entry>& out) {
    const auto index = contents();
    for (const gw::IndexEntryView& entry : index->entries)
        out.push_back({std::string(entry.file_name), std::string(entry.font_name)});
    return index->is_there;
}

int GW_FONTDIR_FILE::get_inst_font_file_names(GW_STRING_LIST& out) {
    const auto index = contents();
    for (const gw::IndexEntryView& entry : index->entries)
        out.append(new GW_STRING(std::string(entry.file_name).c_str()));
    return index->is_there ? 1 : 0;
}

int GW_FONTDIR_FILE::get_inst_font_names(GW_STRING_LIST& out) {
    const auto index = contents();
    for (const gw::IndexEntryView& entry : index->entries)
        out.append(new GW_STRING(std::string(entry.font_name).c_str()));
    return index->is_there ? 1 : 0;
}

namespace {

using Field = std::string_view gw::IndexEntryView::*;

/// The field `wanted` of the first entry whose field `given` is `text`; null when there is none.
std::unique_ptr<GW_STRING> find_entry(const GW_FONTDIR_FILE::Contents& index, Field given, const char* text,
                                      Field wanted) {
    const auto found = std::find_if(index.entries.begin(), index.entries.end(),
                                    [&](const gw::IndexEntryView& entry) { return entry.*given == text; });
    return found != index.entries.end() ? std::make_unique<GW_STRING>(std::string((*found).*wanted).c_str())
                                        : nullptr;
}

}  // namespace

std::unique_ptr<GW_STRING> GW_FONTDIR_FILE::get_font_name(const char* file_name) {
    return find_entry(*contents(), &gw::IndexEntryView::file_name, file_name, &gw::IndexEntryView::font_name);
}

std::unique_ptr<GW_STRING> GW_FONTDIR_FILE::get_file_name(const char* font_name) {
    return find_entry(*contents(), &gw::IndexEntryView::font_name, font_name, &gw::IndexEntryView::file_name);
}

void GW_FONTDIR_FILE::split_line(const char* line, std::string& file_name, std::string& font_name) {
    gw::split_index_line(line, file_name, font_name);
}

GW_FONTDIR_FILE::Batch::Batch(GW_FONTDIR_FILE& the_index) : index(the_index) {
    index.gathered.emplace();
}

GW_FONTDIR_FILE::Batch::~Batch() {
    gw::tell_unless_done(write());
    index.gathered.reset();
}

gw::Outcome GW_FONTDIR_FILE::Batch::write() {
    const Lines lines = std::exchange(*index.gathered, {});
    return lines.count == 0 ? gw::done() : index.append(lines);
}

gw::Outcome GW_FONTDIR_FILE::enter(const char* line) {
    GW_STRING text(line);
    GW_STRING_LIST lines;
    lines.append(&text);
    return enter(lines);
}

gw::Outcome GW_FONTDIR_FILE::enter(const GW_STRING_LIST& lines) {
    Lines added{};
    Lines& target = gathered ? *gathered : added;
    for (const GW_STRING* line : lines) target.text += line->get_str();
    target.count += lines.get_count();
    return gathered ? gw::done() : append(added);
}

gw::Outcome GW_FONTDIR_FILE::append(const Lines& lines) {
    std::string old;
    if (exist() != 0) {
        gw::Result<std::string> bytes = gw::read_file(get_path());
        if (!bytes) return bytes.failure();
        old = std::move(*bytes);
    }
    return gw::replace_file(get_path(), gw::with_entries(old, lines.text, lines.count), INDEX_MODE);
}

gw::Outcome GW_FONTDIR_FILE::withdraw(const char* line) {
    gw::Result<std::string> bytes = gw::read_file(get_path());
    if (!bytes) return bytes.failure();
    if (!gw::withdraw(*bytes, line)) return gw::Failure{get_path(), gw::Reason::NOT_IN_THE_INDEX};
    return gw::replace_file(get_path(), *bytes);
}

gw::Result<int> GW_FONTDIR_FILE::strike_out(const char* file_name, int most) {
    gw::Result<std::string> bytes = gw::read_file(get_path());
    if (!bytes) return bytes.failure();
    const auto deleted = static_cast<int>(gw::strike_out(*bytes, file_name, most).size());
    if (deleted == 0) return 0;
    const gw::Outcome written = gw::replace_file(get_path(), *bytes);
    if (!written) return written.failure();
    return deleted;
}

int GW_FONTDIR_FILE::append_line(const char* line) {
    return enter(line) ? 1 : 0;
}

int GW_FONTDIR_FILE::append_line(const GW_STRING_LIST* lines) {
    return enter(*lines) ? 1 : 0;
}

int GW_FONTDIR_FILE::take_back_line(const char* line) {
    return withdraw(line) ? 1 : 0;
}

int GW_FONTDIR_FILE::delete_font_file_line(const char* file_name) {
    const gw::Result<int> struck = strike_out(file_name, 1);
    return struck && *struck > 0 ? 1 : 0;
}

int GW_FONTDIR_FILE::delete_font_file_lines(const char* file_name) {
    const gw::Result<int> struck = strike_out(file_name);
    return struck && *struck > 0 ? 1 : 0;
}

int GW_FONTDIR_FILE::delete_line(int n) {
    const gw::Result<std::string> bytes = gw::read_file(get_path());
    if (!bytes || n < 1) return 0;
    std::size_t start = gw::index_line_end(*bytes, 0);
    for (int i = 1; i < n && start < bytes->size(); ++i) start = gw::index_line_end(*bytes, start);
    if (start >= bytes->size()) return 0;
    std::string rest = *bytes;
    rest.erase(start, gw::index_line_end(*bytes, start) - start);
    return gw::replace_file(get_path(), rest) ? 1 : 0;
}

int GW_FONTDIR_FILE::adjust_font_count(int delta) {
    const gw::Result<std::string> bytes = gw::read_file(get_path());
    if (!bytes) return -1;
    const int count = gw::index_count(*bytes) + delta;
    return gw::replace_file(get_path(), gw::with_index_count(*bytes, count)) ? count : -1;
}
