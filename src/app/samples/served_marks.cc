// SPDX-License-Identifier: MIT
#include "app/samples/served_marks.h"

#include <filesystem>

#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/program/shown_names.h"
#include "fontpath/catalogue.h"
#include "texts/messages.h"

namespace gw {

ServedDirectories::ServedDirectories(const std::vector<std::string>& path, PathHost host) : host_(host) {
    for (const std::string& element : path) {
        if (element.starts_with('/')) {
            served_.insert(identity(directory_of_element(element)));
        } else if (is_catalogue(element)) {
            add_catalogue(directory_of_catalogue(element));
        } else if (element != "built-ins") {
            is_open_ = true;
        }
    }
}

/// What is behind links that cannot be looked at may be anything.
void ServedDirectories::add_catalogue(const std::string& directory) {
    const bool may_look = host_ == PathHost::THIS && directory.starts_with('/') && !is_silent(directory);
    const Result<std::vector<CatalogueLink>> links =
        may_look ? links_of_catalogue(directory) : Failure{directory, Reason::SILENT};
    if (!links) {
        is_open_ = true;
        return;
    }
    std::vector<std::string> linked;
    for (const CatalogueLink& link : *links) linked.push_back(link.directory);
    (void)find_silent(linked);
    for (const std::string& one : linked)
        if (!is_silent(one)) served_.insert(identity(one));
}

ElementIdentity ServedDirectories::identity(const std::string& directory) const {
    return identity_of_element(directory, host_);
}

bool ServedDirectories::has(std::string_view directory) {
    if (is_open_) return true;
    if (directory == last_ && !known_.empty()) return has_last_;
    last_ = directory;
    const auto [known, is_new] = known_.try_emplace(last_, false);
    if (is_new) known->second = served_.contains(identity(last_));
    return has_last_ = known->second;
}

bool ServedDirectories::has_some_of(const GWHRNElement& element) {
    bool is_empty = true;
    for (const GWHRNElement::PointSize& size : element.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) {
            if (has(font->get_dir_name())) return true;
            is_empty = false;
        }
    }
    return is_empty;
}

namespace {

/// For each row whether it is to be marked.
std::vector<bool> rows_not_served() {
    std::vector<bool> marks;
    const bool is_here = server_place() != ServerPlace::ELSEWHERE;
    ServedDirectories served(served_path(), is_here ? PathHost::THIS : PathHost::ANOTHER);
    for (const GWHRNElement* element : the_installed_hrn_list) marks.push_back(!served.has_some_of(*element));
    for (const GWAlias* alias : the_alias_list) marks.push_back(!served.has(alias->get_dir_name()));
    return marks;
}

std::vector<bool>& shown_marks() {
    static std::vector<bool> marks;
    return marks;
}

}  // namespace

std::vector<std::string> marked_rows() {
    std::vector<std::string> names;
    for (const GWHRNElement* element : the_installed_hrn_list) names.emplace_back(element->get_name());
    for (const GWAlias* alias : the_alias_list) names.emplace_back(alias->get_hrn_name());
    shown_marks() = rows_not_served();
    const std::string words = text_of(Message::NOT_SERVED_MARK);
    std::vector<std::string> marks;
    for (const bool is_marked : shown_marks()) marks.push_back(is_marked ? words.substr(1) : "");
    return names_in_columns(names, marks);
}

bool are_marks_out_of_date() {
    return shown_marks() != rows_not_served();
}

}  // namespace gw
