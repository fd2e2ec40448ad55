// SPDX-License-Identifier: MIT
#include "model/font_report.h"

#include <set>

#include "core/text.h"

namespace gw {

namespace {

std::vector<std::string> files_of(const GWFont& font) {
    std::vector<std::string> paths;
    const GW_FSPEC_LIST* files = font.get_font_file_list();
    if (files == nullptr) return paths;
    for (const GW_FILE_SPEC* file : *files) paths.emplace_back(file->get_path());
    return paths;
}

}  // namespace

// Up to the bracket that closes the type.
std::string name_without_mark(const std::string& name) {
    const std::size_t type = name.find('[');
    const std::size_t end = type == std::string::npos ? type : name.find(']', type);
    return end == std::string::npos ? name : name.substr(0, end + 1);
}

bool FontReport::note(GWFont& font, const Outcome& outcome, const std::string& dir) {
    const std::string name = name_without_mark(font.get_hrn_name());
    if (outcome) {
        successes.push_back({name, with_trailing_slash(dir), font.get_xlfd_name()});
        for (const Failure& remark : font.take_remarks()) remarks_.push_back({name, remark});
    } else {
        entries.push_back({name, outcome.failure(), files_of(font)});
    }
    return static_cast<bool>(outcome);
}

bool FontReport::note(GWFont& font, const Outcome& outcome) {
    const char* dir = font.get_dir_name();
    return note(font, outcome, dir != nullptr ? dir : "");
}

int FontReport::fail_all_in(const std::string& dir, const Failure& why) {
    std::set<std::string> names;
    std::erase_if(successes, [&](const Done& success) {
        if (success.dir != with_trailing_slash(dir)) return false;
        names.insert(success.font);
        return true;
    });
    for (const std::string& name : names) entries.push_back({name, why});
    return static_cast<int>(names.size());
}

void FontReport::clear() {
    entries.clear();
    remarks_.clear();
    successes.clear();
    taken = 0;
}

std::vector<std::string> FontReport::done_names() const {
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (const Done& success : successes) {
        if (seen.insert(success.font).second) names.push_back(success.font);
    }
    return names;
}

std::vector<FontReport::Entry> FontReport::take_new() {
    std::vector<Entry> fresh(entries.begin() + static_cast<std::ptrdiff_t>(taken), entries.end());
    taken = entries.size();
    return fresh;
}

void FontReport::append(const FontReport& other) {
    entries.insert(entries.end(), other.entries.begin(), other.entries.end());
    remarks_.insert(remarks_.end(), other.remarks_.begin(), other.remarks_.end());
    successes.insert(successes.end(), other.successes.begin(), other.successes.end());
}

// Kept: some fonts are left out without a line on standard error.
bool was_always_silent(Reason reason) {
    return reason == Reason::NAME_OF_AN_ALIAS || reason == Reason::TOO_MANY_OF_ONE_SIZE ||
           reason == Reason::NO_FILE;
}

void FontReport::tell() const {
    for (const Entry& entry : entries) {
        if (!was_always_silent(entry.why.reason)) gw::tell(entry.why);
    }
}

}  // namespace gw
