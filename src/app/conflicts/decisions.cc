// SPDX-License-Identifier: MIT
#include "app/conflicts/decisions.h"

#include <algorithm>

#include "app/common/work_control.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "core/long_work.h"
#include "core/text.h"
#include "texts/messages.h"

namespace gw {

namespace {

/// Which package it is and, where windows say more, what its package manager will do.
std::string package_detail(const GWConflict& conflict) {
    std::string text = text_of(Message::IS_IN_PACKAGE);
    if (const std::string names = conflict.get_packages(); !names.empty())
        text.append("\n").append(text_of(Message::PACKAGE)).append(escaped(names));
    if (window_policy().shows_packages()) text += text_of(Message::PACKAGE_MANAGER);
    return text;
}

/// Puts the element of a font that was installed by force where it belongs in the list. It may have left the
/// list, because its fonts were deleted, and its name may have changed.
void list_in_order(GWHRNElement* elem, const std::string& name_before) {
    const Ref<GWHRNElement> owner(elem);
    const bool is_listed = std::find(the_installed_hrn_list.begin(), the_installed_hrn_list.end(), elem) !=
                           the_installed_hrn_list.end();
    if (is_listed && name_before == elem->get_name()) return;
    the_installed_hrn_list.delete_hrn_elem(elem);
    if (elem->get_representative() != nullptr) the_installed_hrn_list.insert(elem);
}

void force(GWConflict& conflict, FontReport& report) {
    if (conflict.get_type() != GWConflict::INSTALL) {
        conflict.delete_force(the_fsm_list, report);
        return;
    }
    GWHRNElement* other = conflict.get_other_element();
    const std::string name = other != nullptr ? other->get_name() : "";
    conflict.install_force(the_fsm_list, report);
    if (other != nullptr) list_in_order(other, name);
}

std::size_t font_count(const GWConflict& conflict) {
    std::size_t count = 0;
    if (conflict.get_element() == nullptr) return count;
    for (const GWHRNElement::PointSize& size : conflict.get_element()->get_slots())
        count += size.fonts.size();
    return count;
}

}  // namespace

std::string resolution_word(Resolution resolution, bool installs) {
    switch (resolution) {
        case Resolution::KEEP_AS_IS:
            return text_of(installs ? Message::KEEP_OLD : Message::KEEP);
        case Resolution::FORCE:
            return text_of(installs ? Message::INSTALL_NEW : Message::DELETE);
        default:
            return "";
    }
}

std::string conflict_detail(const GWConflict& conflict) {
    std::string text;
    if (conflict.is_conflict(GWConflict::SAME_NAME) != 0) {
        if (conflict.get_type() == GWConflict::INSTALL) text += text_of(Message::EXISTS_ALREADY);
        text += escaped(conflict.get_conflict_dir_name());
    }
    return text + other_reasons(conflict);
}

std::string other_reasons(const GWConflict& conflict) {
    std::string text;
    if (conflict.is_conflict(GWConflict::READ_ONLY) != 0) text += text_of(Message::IS_READ_ONLY);
    if (conflict.is_conflict(GWConflict::SYSTEM_FONT) != 0) text += text_of(Message::IS_SYSTEM_FONT);
    if (conflict.is_conflict(GWConflict::PACKAGE) != 0) text += package_detail(conflict);
    if (conflict.is_conflict(GWConflict::ALIAS) != 0) text += text_of(Message::IS_ALIAS);
    return text;
}

Decisions& decisions() {
    static Decisions of_the_dialog;
    return of_the_dialog;
}

void Decisions::begin(unsigned success, GW_LIST<GWConflict>* list) {
    shown_.show(list);
    success_count_ = success;
    type_ = (*list->begin())->get_type();
    resolutions_.clear();
    for (const GWConflict* conflict : *list) {
        const bool read_only = conflict->is_conflict(GWConflict::READ_ONLY) != 0;
        resolutions_.push_back(read_only ? Resolution::READ_ONLY : Resolution::UNDECIDED);
    }
}

void Decisions::forget() {
    resolutions_.clear();
    shown_.let_go();
}

GWConflict* Decisions::conflict_at(int position) const {
    return list() != nullptr ? list()->get_elem_at_pos(position) : nullptr;
}

Resolution Decisions::at(int position) const {
    return resolutions_[static_cast<std::size_t>(position) - 1];
}

void Decisions::decide(int position, Resolution resolution) {
    Resolution& current = resolutions_[static_cast<std::size_t>(position) - 1];
    if (current != Resolution::READ_ONLY) current = resolution;
}

bool Decisions::has_undecided() const {
    return std::find(resolutions_.begin(), resolutions_.end(), Resolution::UNDECIDED) != resolutions_.end();
}

/// Carries out the decision; whether that counts.
bool Decisions::force_and_tell(GWConflict& conflict, FontReport& all) {
    const std::size_t fonts = font_count(conflict);
    FontReport report;
    force(conflict, report);
    all.append(report);
    hear_new_failures(all);
    // Kept: a font that is decided by force counts as done.
    if (!window_policy().shows_reasons()) return true;
    // As at first, a name counts when one of its fonts was installed, and when all of them were deleted.
    if (is_given_up()) return installs() ? !report.done().empty() : report.done().size() == fonts;
    return report.failed().empty() || (installs() && report.failed().size() < fonts);
}

/// As with single fonts, what fails counts as done unless the windows show reasons.
void Decisions::make_final(FontReport& report) {
    const Sequel sequel = installs() ? Sequel::FONT_LEFT_OUT : Sequel::FONT_STAYS;
    const auto failed = static_cast<unsigned>(commit_font_action(report, sequel));
    hear_new_failures(report);
    // A name of which a part had failed before was not counted.
    if (window_policy().shows_reasons()) success_count_ -= std::min(failed, success_count_);
}

bool Decisions::are_entrusted() const {
    return count() > 0 && conflict_at(1) != nullptr && conflict_at(1)->is_entrusted();
}

std::vector<int> Decisions::forced() const {
    std::vector<int> positions;
    for (int position = 1; position <= count(); ++position) {
        if (at(position) == Resolution::FORCE) positions.push_back(position);
    }
    return positions;
}

/// Returns how many were tried; fewer than all when the user has stopped it.
std::size_t Decisions::carry_out_each(const std::vector<int>& positions, ControlledWork& work,
                                      FontReport& report) {
    for (std::size_t i = 0; i < positions.size(); ++i) {
        GWConflict& conflict = *conflict_at(positions[i]);
        if (!work.begin(i + 1, conflict.get_name())) return i;
        const std::size_t failures = report.failed().size();
        const bool is_done = force_and_tell(conflict, report);
        if (is_done) ++success_count_;
        const std::vector<std::string> reasons = reasons_since(report, failures);
        const bool goes_on = work.goes_on_after(reasons);
        // The font in work was given up.
        if (!goes_on && !is_done && reasons.empty()) return i;
        if (!goes_on) return i + 1;
    }
    return positions.size();
}

void Decisions::tell_server(const std::vector<int>& carried_out) const {
    if (!installs()) return the_font_path->rehash_session_fp();
    std::string destination;
    for (const int position : carried_out) {
        if (const char* dir = conflict_at(position)->get_dir_name(); dir != nullptr) destination = dir;
    }
    if (destination.empty()) return;
    for (const Failure& failure : show_installation_to_server(destination)) tell(failure);
}

std::vector<int> Decisions::carry_out(FontReport& report) {
    std::vector<int> positions = forced();
    ControlledWork work(Message::DECIDED_TITLE,
                        installs() ? Message::INSTALLING_COUNT : Message::DELETING_COUNT, positions.size());
    begin_font_action();
    const std::size_t tried = carry_out_each(positions, work, report);
    work.finish();
    make_final(report);
    count_installed_fonts();
    std::vector<int> untried(positions.begin() + static_cast<std::ptrdiff_t>(tried), positions.end());
    positions.resize(tried);
    tell_server(positions);
    return untried;
}

}  // namespace gw
