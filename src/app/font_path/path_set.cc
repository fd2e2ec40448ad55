// SPDX-License-Identifier: MIT
#include "app/font_path/path_set.h"

#include <algorithm>
#include <utility>

#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "core/text.h"

namespace gw {

namespace {

using Type = GWFontPath::TYPE;

void append_rows(std::vector<PathRow>& rows, GWFontPath& font_path, Type type, Origin origin) {
    unsigned count = 0;
    for (const GW_STRING* element : *font_path.get_fpe_list(type, count))
        rows.push_back({element->get_str(), origin});
}

/// The parts of a user's font path, in the order in which they are composed.
std::vector<PathRow> rows_of_user(GWFontPath& font_path) {
    std::vector<PathRow> rows;
    append_rows(rows, font_path, GWFontPath::USER_PREPEND_FP, Origin::OWN_FRONT);
    append_rows(rows, font_path, GWFontPath::LOCALE_PREPEND_FP, Origin::LOCALE);
    unsigned hosts = 0;
    font_path.get_fpe_list(GWFontPath::HOST_FP, hosts);
    if (hosts > 0) {
        append_rows(rows, font_path, GWFontPath::HOST_FP, Origin::HOST);
    } else {
        append_rows(rows, font_path, GWFontPath::INSTALLATION_FP, Origin::INSTALLATION);
    }
    append_rows(rows, font_path, GWFontPath::DT_LOCALE_FP, Origin::DESKTOP);
    append_rows(rows, font_path, GWFontPath::LOCALE_APPEND_FP, Origin::LOCALE);
    append_rows(rows, font_path, GWFontPath::USER_APPEND_FP, Origin::OWN_END);
    return rows;
}

void append_elements(GW_LIST<GW_STRING>& list, const std::vector<std::string>& elements) {
    for (const std::string& element : elements) list.append(new GW_STRING(element.c_str()));
}

}  // namespace

Origin origin_of_new_elements() {
    return user_is_superuser() ? Origin::EDITED : Origin::OWN_END;
}

void PathSet::read(const char* root) {
    *this = {};
    if (root == nullptr) return;
    root_ = root;
    compose();
}

void PathSet::compose() {
    font_path_ = std::make_unique<GWFontPath>(std::string(without_trailing_slashes(*root_)).c_str());
    std::vector<PathRow> rows;
    if (user_is_superuser()) {
        append_rows(rows, *font_path_, GWFontPath::ALL_FP, Origin::EDITED);
    } else {
        rows = rows_of_user(*font_path_);
    }
    stored_ = EditedPath(std::move(rows));
}

bool PathSet::catch_up() {
    if (!is_out_of_date()) return false;
    const std::vector<PathRow> before = stored_.rows();
    compose();
    return stored_.rows() != before;
}

bool PathSet::is_writeable() const {
    if (!font_path_) return false;
    return font_path_->is_writeable(user_is_superuser() ? GWFontPath::INSTALLATION_FP
                                                        : GWFontPath::USER_APPEND_FP) != 0;
}

Outcome PathSet::store(const EditedPath& path) {
    GW_LIST<GW_STRING> list;
    GW_LIST<GW_STRING> front;
    const ElementsOwner list_owner(list);
    const ElementsOwner front_owner(front);
    append_elements(front, path.elements(Origin::OWN_FRONT));
    append_elements(list, path.elements(origin_of_new_elements()));
    Outcome written = user_is_superuser() ? font_path_->replace(GWFontPath::INSTALLATION_FP, list,
                                                                window_policy().stores_an_empty_path())
                                          : font_path_->replace_users(front, list);
    if (!written) return written;
    const std::vector<std::string> now = path.configured();
    for (const std::string& element : stored_.configured()) {
        if (std::find(now.begin(), now.end(), element) == now.end()) removed_.push_back(element);
    }
    take_stored(path);
    return written;
}

/// What is stored now is `path`, and what another program has added meanwhile.
void PathSet::take_stored(const EditedPath& path) {
    if (!user_is_superuser()) {
        stored_ = EditedPath(rows_of_user(*font_path_));
        return;
    }
    stored_ = path;
    stored_.set_servers({});
    std::vector<PathRow> written;
    append_rows(written, *font_path_, GWFontPath::INSTALLATION_FP, Origin::EDITED);
    if (window_policy().shows_live_path() && written != stored_.rows()) compose();
}

}  // namespace gw
