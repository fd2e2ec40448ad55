// SPDX-License-Identifier: MIT
#include "app/deleting/deletion_question.h"

#include <sys/stat.h>

#include <algorithm>
#include <set>

#include "app/program/shown_list.h"
#include "core/text.h"
#include "model/gw_hrn_list.h"
#include "platform/user_name.h"
#include "store/trash.h"
#include "store/trash_policy.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr std::size_t MOST_NAMES = 10;
constexpr std::time_t DAY = 24L * 60 * 60;

/// What goes: names of files by their directories.
using Files = std::map<std::string, std::set<std::string>>;

Files files_of(const GWHRNElement& element) {
    Files files;
    for (const GWHRNElement::PointSize& size : element.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) {
            if (font->get_font_file_list() == nullptr || font->get_dir_name() == nullptr) continue;
            const std::string dir = with_trailing_slash(font->get_dir_name());
            for (const GW_FILE_SPEC* file : *font->get_font_file_list()) {
                const std::string path = file->get_path();
                files[dir].insert(path.starts_with(dir) ? path.substr(dir.size()) : file->get_name());
            }
        }
    }
    return files;
}

void count_owners(const Files& files, DeletionPlan& plan) {
    for (const auto& [dir, names] : files) {
        for (const std::string& name : names) {
            struct stat info = {};
            if (::lstat((dir + name).c_str(), &info) == 0) ++plan.files_of[user_name(info.st_uid)];
        }
    }
}

/// Whether any of the files is among those that would be lost.
bool loses_a_file(const Files& files, const Files& lost) {
    return std::any_of(files.begin(), files.end(), [&](const auto& in_dir) {
        const auto found = lost.find(in_dir.first);
        if (found == lost.end()) return false;
        return std::any_of(in_dir.second.begin(), in_dir.second.end(),
                           [&](const std::string& name) { return found->second.count(name) > 0; });
    });
}

std::string names_in_lines(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < MOST_NAMES; ++i) text += "\n    " + escaped(names[i]);
    if (names.size() > MOST_NAMES)
        text += "\n    " + text_of(Message::AND_MORE, static_cast<unsigned>(names.size() - MOST_NAMES));
    return text;
}

std::string way_back(const DeletionPlan& plan) {
    const auto days = static_cast<unsigned>(trash_limits().longest / DAY);
    if (plan.not_kept == plan.fonts.size()) return text_of(Message::CANNOT_BE_UNDONE);
    std::string text = text_of(Message::CAN_BE_BROUGHT_BACK, days);
    if (plan.not_kept > 0)
        text +=
            '\n' + text_of(Message::CANNOT_BE_UNDONE_FOR_ONE, Message::CANNOT_BE_UNDONE_FOR, plan.not_kept);
    return text;
}

}  // namespace

DeletionPlan plan_deletion(const std::vector<int>& positions) {
    DeletionPlan plan;
    std::vector<Files> fonts;
    Files all;
    const ShownList entries = installed_entries();
    for (const int position : positions) {
        const GWHRNElement* element = entries.font_at(position);
        if (element == nullptr || element->is_read_only() != 0) {
            ++plan.staying;
            continue;
        }
        plan.fonts.emplace_back(element->get_name());
        fonts.push_back(files_of(*element));
        for (const auto& [dir, names] : fonts.back()) all[dir].insert(names.begin(), names.end());
    }
    count_owners(all, plan);
    Files lost;
    for (const auto& [dir, names] : all) lost[dir] = would_be_lost(dir, names);
    plan.not_kept = static_cast<unsigned>(std::count_if(
        fonts.begin(), fonts.end(), [&](const Files& files) { return loses_a_file(files, lost); }));
    return plan;
}

std::string question_in_words(const DeletionPlan& plan) {
    std::string text;
    if (!plan.fonts.empty()) {
        text = text_of(Message::DELETE_ONE_QUESTION, Message::DELETE_MANY_QUESTION,
                       static_cast<unsigned>(plan.fonts.size())) +
               names_in_lines(plan.fonts) + "\n ";
        for (const auto& [owner, count] : plan.files_of) {
            const Message words = count == 1 ? Message::ONE_FILE_OF : Message::FILES_OF;
            text += '\n' + text_of(words, {std::to_string(count), owner});
        }
        text += '\n' + way_back(plan);
    }
    if (plan.staying > 0) {
        if (!text.empty()) text += '\n';
        text += text_of(Message::ONE_ENTRY_STAYS, Message::ENTRIES_STAY, plan.staying);
    }
    return text;
}

}  // namespace gw
