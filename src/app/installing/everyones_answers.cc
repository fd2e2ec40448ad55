// SPDX-License-Identifier: MIT
#include "app/installing/everyones_answers.h"

#include <algorithm>
#include <map>
#include <utility>

#include "model/font_report.h"
#include "model/sent_files.h"

namespace gw {

namespace {

using Fonts = std::vector<const EveryoneAnswer::Font*>;

/// A name as lists show it, without what tells it from others that read the same: that depends on what else
/// is in the list.
std::string plain_name(const std::string& name) {
    std::string plain = name_without_mark(name);
    const std::size_t type = plain.rfind(" [");
    const std::size_t begin = plain.rfind(" (", type);
    if (type != std::string::npos && begin != std::string::npos && plain[type - 1] == ')')
        plain.erase(begin, type - begin);
    return plain;
}

Fonts called(const std::string& name, const Fonts& fonts) {
    Fonts exact;
    Fonts alike;
    for (const EveryoneAnswer::Font* font : fonts) {
        if (font->font == name_without_mark(name)) exact.push_back(font);
        if (plain_name(font->font) == plain_name(name)) alike.push_back(font);
    }
    return exact.empty() ? alike : exact;
}

}  // namespace

std::vector<SentEntry> sent_entries(const std::vector<Ref<GWHRNElement>>& entries,
                                    const std::vector<SentFile>& sent) {
    std::map<std::string, std::string> names;
    for (const SentFile& file : sent) {
        if (!is_metrics_name(file.name)) names[file.path] = file.name;
    }
    std::vector<SentEntry> result;
    for (const Ref<GWHRNElement>& entry : entries) {
        result.push_back({entry, {}});
        for (const SentFile& file : files_of({entry.get()})) {
            const auto name = names.find(file.path);
            if (name != names.end()) result.back().names.push_back(name->second);
        }
    }
    return result;
}

EveryonesAnswers::EveryonesAnswers(EveryoneAnswer answer, const std::vector<SentEntry>& sent)
    : answer_(std::move(answer)) {
    std::map<std::string, Fonts> by_files;
    for (const Font& font : answer_.fonts) {
        if (font.files.empty()) without_files_.push_back(&font);
        for (const std::string& file : font.files) by_files[file].push_back(&font);
    }
    for (const SentEntry& one : sent) {
        Fonts& fonts = by_entry_[one.entry.get()];
        for (const std::string& name : one.names) {
            for (const Font* font : by_files[name]) {
                if (std::find(fonts.begin(), fonts.end(), font) == fonts.end()) fonts.push_back(font);
            }
        }
        for (const Font* font : fonts) names_[font] = name_without_mark(one.entry->get_name());
    }
}

Fonts EveryonesAnswers::about(const GWHRNElement* entry, const std::string& name) const {
    const auto found = by_entry_.find(entry);
    return found != by_entry_.end() && !found->second.empty() ? found->second : called(name, without_files_);
}

std::string EveryonesAnswers::name_of(const Font& font) const {
    const auto name = names_.find(&font);
    return name != names_.end() ? name->second : font.font;
}

}  // namespace gw
