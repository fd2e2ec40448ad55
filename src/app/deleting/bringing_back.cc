// SPDX-License-Identifier: MIT
#include "app/deleting/bringing_back.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <utility>

#include "app/common/status_line.h"
#include "app/common/warningdlg.h"
#include "app/common/work_control.h"
#include "app/kit/busy_windows.h"
#include "app/kit/gw_gui_util.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/undo_record.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr std::size_t MOST_REASONS = 10;

void list_again(const ReturnOfFonts& fonts) {
    std::set<std::string> dirs;
    for (const DeletedFont& font : fonts.done) dirs.insert(font.dir);
    for (const std::string& dir : dirs) {
        for (const Failure& failure : show_installation_to_server(dir)) tell(failure);
    }
    clear_attributes();
    fill_program_lists();
    update_wi_installed_hrn_list();
}

/// The entries of the list that have one of these fonts.
std::vector<int> positions_of(const std::vector<DeletedFont>& fonts) {
    std::set<std::pair<std::string, std::string>> back;  // directories and names
    for (const DeletedFont& font : fonts) {
        for (const std::string& name : font.font_names) back.emplace(font.dir, lower_case(name));
    }
    const auto is_back = [&](const Ref<GWFont>& font) {
        const char* dir = font->get_dir_name();
        return back.contains(
            {with_trailing_slash(dir != nullptr ? dir : ""), lower_case(font->get_xlfd_name())});
    };
    std::vector<int> positions;
    int position = 0;
    for (const GWHRNElement* element : the_installed_hrn_list) {
        ++position;
        const auto& slots = element->get_slots();
        if (std::any_of(slots.begin(), slots.end(), [&](const GWHRNElement::PointSize& slot) {
                return std::any_of(slot.fonts.begin(), slot.fonts.end(), is_back);
            }))
            positions.push_back(position);
    }
    return positions;
}

/// What the font is, and why it was left.
std::string reason_line(const DeletedFont& font, const Failure& why) {
    return (font.name.empty() ? "" : escaped(font.name) + ": ") + failure_line(why);
}

std::vector<std::string> reasons_in_lines(const ReturnOfFonts& fonts) {
    std::vector<std::string> lines;
    for (const auto& [font, why] : fonts.left) lines.push_back(reason_line(font, why));
    return lines;
}

std::string text_with_reasons(std::string text, const ReturnOfFonts& fonts) {
    const std::vector<std::string> lines = reasons_in_lines(fonts);
    for (std::size_t i = 0; i < lines.size() && i < MOST_REASONS; ++i) text += '\n' + lines[i];
    if (lines.size() > MOST_REASONS)
        text += '\n' + text_of(Message::AND_MORE, static_cast<unsigned>(lines.size() - MOST_REASONS));
    return text;
}

/// What a user can do about it; nothing when the reason itself is all there is to say.
std::optional<Message> advice_about(const Failure& why) {
    if (why.is_lack_of_room()) return Message::ADVICE_NO_ROOM;
    const bool is_closed = why.error == EACCES || why.error == EPERM || why.error == EROFS;
    if (why.reason == Reason::SYSTEM && is_closed) return Message::ADVICE_NOT_ALLOWED;
    switch (why.reason) {
        case Reason::FILE_IN_THE_WAY:
            return Message::ADVICE_FILE_IN_THE_WAY;
        case Reason::NAME_IN_THE_WAY:
            return Message::ADVICE_NAME_IN_THE_WAY;
        case Reason::NOT_IN_TRASH:
            return Message::ADVICE_NOT_IN_TRASH;
        case Reason::IN_USE:
            return Message::ADVICE_IN_USE;
        case Reason::NOT_ALLOWED:
            return Message::ADVICE_NOT_ALLOWED;
        default:
            return std::nullopt;
    }
}

/// Each advice once; the last one says where the fonts are that can still come back.
std::vector<Message> advices(const ReturnOfFonts& fonts) {
    std::vector<Message> all;
    bool is_something_left = false;
    for (const auto& [font, why] : fonts.left) {
        const std::optional<Message> advice = advice_about(why);
        if (advice && std::find(all.begin(), all.end(), *advice) == all.end()) all.push_back(*advice);
        is_something_left = is_something_left || why.reason != Reason::NOT_IN_TRASH;
    }
    if (is_something_left) all.push_back(Message::ADVICE_DELETED_FONTS);
    return all;
}

/// The user watches over the work.
DeletedFontsWatch watch_of(ControlledWork& work) {
    return {
        .before = [&work](std::size_t number,
                          const DeletedFont& font) { return work.begin(number, font.name); },
        .after_failure = [&work](const DeletedFont& font,
                                 const Failure& why) { return work.goes_on_after({reason_line(font, why)}); },
        .at_end = [&work] { work.finish(); }};
}

}  // namespace

void undo_last_work() {
    // This comes first: it handles events, and the user may begin other work in them.
    const BusyWindows busy;
    if (the_wp_cl_data.is_in_progress() || undo_record().entries.empty()) return;
    const UndoRecord record = take_undoable();
    const ReturnOfFonts result = bring_back_and_list(fonts_of_action(record.entries), record.came);
    update_label(wi_main_window_status_label, brought_back_text(result).c_str(), nullptr);
    if (!result.left.empty()) show_not_brought_back(result);
}

ReturnOfFonts bring_back_and_list(const std::vector<DeletedFont>& fonts,
                                  const std::vector<FontAction::Came>& in_their_places) {
    ReturnOfFonts result;
    {
        ControlledWork work(Message::RETURNING_TITLE, Message::RETURNING_COUNT, fonts.size());
        result = bring_fonts_back(fonts, in_their_places, watch_of(work));
        if (!result.done.empty()) list_again(result);
    }
    if (!result.done.empty()) select_in_installed_list(positions_of(result.done));
    return result;
}

ReturnOfFonts delete_for_good_and_show(const std::vector<DeletedFont>& fonts) {
    ControlledWork work(Message::PURGING_TITLE, Message::PURGING_COUNT, fonts.size());
    return delete_for_good(fonts, watch_of(work));
}

std::string brought_back_text(const ReturnOfFonts& fonts) {
    return with_untried(text_of(Message::ONE_FONT_BROUGHT_BACK, Message::MANY_FONTS_BROUGHT_BACK,
                                static_cast<unsigned>(fonts.done.size())),
                        untried_text(static_cast<unsigned>(fonts.untried)));
}

std::string gone_text(const ReturnOfFonts& fonts) {
    return with_untried(
        text_of(Message::ONE_FONT_GONE, Message::MANY_FONTS_GONE, static_cast<unsigned>(fonts.done.size())),
        untried_text(static_cast<unsigned>(fonts.untried)));
}

void show_not_brought_back(const ReturnOfFonts& fonts) {
    const auto count = static_cast<unsigned>(fonts.left.size());
    std::string text = text_with_reasons(
        text_of(Message::ONE_NOT_BROUGHT_BACK, Message::MANY_NOT_BROUGHT_BACK, count), fonts);
    text += "\n\n" + std::string(text_of(Message::WHAT_TO_DO));
    for (const Message advice : advices(fonts)) text += '\n' + std::string(text_of(advice));
    start_warning_dlg(text_of(Message::NOT_BROUGHT_BACK_TITLE), text.c_str());
}

void show_reasons(const char* title, Message heading, const ReturnOfFonts& fonts) {
    start_warning_dlg(title, text_with_reasons(text_of(heading), fonts).c_str());
}

}  // namespace gw
