// SPDX-License-Identifier: MIT
#include <algorithm>
#include <set>

#include "core/gw_list.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "fontpath/session_path.h"
#include "platform/host_paths.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"

namespace gw::fonts {

namespace {

using session::Elements;

constexpr WhosePath ALL_PATHS[] = {WhosePath::ME, WhosePath::HOST, WhosePath::INSTALLATION,
                                   WhosePath::SESSION};

const char* word_for(WhosePath whose) {
    switch (whose) {
        case WhosePath::ME:
            return "me";
        case WhosePath::HOST:
            return "host";
        case WhosePath::INSTALLATION:
            return "installation";
        case WhosePath::SESSION:
            break;
    }
    return "session";
}

GWFontPath::TYPE list_of(const PathOptions& options) {
    switch (options.whose) {
        case WhosePath::HOST:
            return GWFontPath::HOST_FP;
        case WhosePath::INSTALLATION:
            return GWFontPath::INSTALLATION_FP;
        default:
            return options.in_front ? GWFontPath::USER_PREPEND_FP : GWFontPath::USER_APPEND_FP;
    }
}

/// A font path that is read and written as a whole: a configured one, or that of a running server.
class EditedPath {
  public:
    EditedPath(const PathOptions& options, Report& report) : list_(list_of(options)), report_(report) {
        if (options.whose == WhosePath::SESSION) {
            server_ = server_or_trouble(options.display, report);
            can_be_read_ = server_ != nullptr;
            if (server_) elements = server_->font_path();
        } else {
            elements = elements_of(list_);
            // What cannot be read is not replaced.
            if (const Outcome& read = font_path_of_host().was_read(list_); !read) {
                report.trouble(read.failure());
                can_be_read_ = false;
            }
        }
        before_ = elements;
    }

    [[nodiscard]] bool can_be_read() const { return can_be_read_; }
    [[nodiscard]] bool has_changed() const { return elements != before_; }
    /// Stores `elements`. They are what is there afterwards, also after a failure, which is a trouble.
    Outcome store() {
        if (report_.settings().dry_run) return done();
        if (server_) return give();
        Outcome outcome = store_elements(list_, elements);
        if (outcome) return outcome;
        report_.trouble(outcome.failure());
        elements = before_;
        return outcome;
    }

    Elements elements;

  private:
    /// Fails when the server does not take what it is to have. An element of its own that it cannot use any
    /// more is left out, as the next change of its path would do.
    Outcome give() {
        if (elements.empty()) {
            const std::string last = before_.empty() ? "" : before_.back();
            report_.trouble(last, Message::SAYS_LAST_ELEMENT);
            elements = before_;
            return Failure{last, Reason::REFUSED_BY_SERVER};
        }
        const session::Outcome given = give_to_server(*server_, elements, report_);
        elements = given.path;
        for (const std::string& refused : given.refused) {
            if (std::find(before_.begin(), before_.end(), refused) == before_.end())
                return Failure{refused, Reason::REFUSED_BY_SERVER};
        }
        return done();
    }

    GWFontPath::TYPE list_;
    Report& report_;
    std::unique_ptr<ServerView> server_;
    Elements before_;
    bool can_be_read_ = true;
};

Elements::iterator find(Elements& elements, const std::string& element) {
    return std::find_if(elements.begin(), elements.end(), [&](const std::string& other) {
        return other == element || identity_of_element(other) == identity_of_element(element);
    });
}

Json in_json(const Elements& elements) {
    Json all = Json::array();
    for (const std::string& element : elements) all.push_back(fonts::in_json(element));
    return all;
}

Status stored(EditedPath& path, Tally& tally, bool changed, Report& report) {
    if (!changed) {
        tally.already();
    } else if (const Outcome outcome = path.store(); !outcome) {
        tally.failed(outcome.failure());
    }
    report.document()["path"] = in_json(path.elements);
    report.document()["changed"] = path.has_changed();
    report_heard(report);
    return tally.status();
}

void show_one(WhosePath whose, const Elements& elements, bool with_heading, Report& report) {
    if (with_heading && !report.settings().nul) report.line(std::string(word_for(whose)) + ':');
    for (const std::string& element : elements) report.record(element);
    report.document()["paths"][word_for(whose)] = in_json(elements);
}

Elements both_of_user() {
    Elements all = elements_of(GWFontPath::USER_PREPEND_FP);
    for (const std::string& element : elements_of(GWFontPath::USER_APPEND_FP)) all.push_back(element);
    return all;
}

}  // namespace

Status show_path(const PathOptions& options, bool all, Report& report) {
    for (const WhosePath whose : ALL_PATHS) {
        if (!all && whose != options.whose) continue;
        if (whose == WhosePath::ME) {
            show_one(whose, both_of_user(), all, report);
        } else if (whose != WhosePath::SESSION) {
            show_one(whose, elements_of(list_of({whose, false, ""})), all, report);
        } else {
            const std::unique_ptr<ServerView> server = server_or_trouble(options.display, report);
            if (!server) return Status::COULD_NOT;
            show_one(whose, server->font_path(), all, report);
        }
    }
    report_heard(report);
    return Status::DONE;
}

Status add_to_path(const PathOptions& options, const std::vector<std::string>& elements, Report& report) {
    EditedPath path(options, report);
    if (!path.can_be_read()) return Status::COULD_NOT;
    Tally tally;
    std::size_t place = options.in_front && options.whose != WhosePath::ME ? 0 : path.elements.size();
    bool changed = false;
    for (const std::string& element : elements) {
        if (find(path.elements, element) != path.elements.end()) continue;
        path.elements.insert(path.elements.begin() + static_cast<std::ptrdiff_t>(place++), element);
        changed = true;
    }
    return stored(path, tally, changed, report);
}

Status remove_from_path(const PathOptions& options, const std::vector<std::string>& elements,
                        Report& report) {
    EditedPath path(options, report);
    if (!path.can_be_read()) return Status::COULD_NOT;
    Tally tally;
    bool changed = false;
    for (const std::string& element : elements) {
        const auto found = find(path.elements, element);
        if (found == path.elements.end()) continue;
        path.elements.erase(found);
        changed = true;
    }
    return stored(path, tally, changed, report);
}

Status move_on_path(const PathOptions& options, const std::string& element, int place, Report& report) {
    EditedPath path(options, report);
    if (!path.can_be_read()) return Status::COULD_NOT;
    Tally tally;
    const auto found = find(path.elements, element);
    if (found == path.elements.end()) {
        report.trouble(element, Message::SAYS_NOT_ON_PATH);
        return Status::FAILED;
    }
    const Elements before = path.elements;
    const std::string moved = *found;
    path.elements.erase(found);
    const auto last = static_cast<int>(path.elements.size()) + 1;
    path.elements.insert(path.elements.begin() + (std::clamp(place, 1, last) - 1), moved);
    return stored(path, tally, path.elements != before, report);
}

Status apply_path(const std::string& display, Report& report) {
    const std::unique_ptr<ServerView> server = server_or_trouble(display, report);
    if (!server) return Status::COULD_NOT;
    const PathHost host = host_of(server->place());
    const Elements before = server->font_path();
    const session::Plan plan =
        session::make_plan(session::read_configuration(INSTALLATION_ROOT, SETUP_RECORD), before, host);
    Tally tally;
    for (const auto* remarks : {&plan.skipped, &plan.dropped})
        for (const session::Remark& remark : *remarks) report.trouble(remark.what, remark.why);
    Elements now = plan.path;
    if (!report.settings().dry_run && plan.path != before) {
        const session::Outcome given = give_to_server(*server, plan.path, report);
        if (!given.refused.empty()) tally.failed();
        now = given.path;
    }
    for (const std::string& element : now) report.record(element);
    now == before ? tally.already() : tally.done();
    report.document()["path"] = in_json(now);
    report.document()["changed"] = now != before;
    return tally.status();
}

Status save_path(const std::string& display, Report& report) {
    const std::unique_ptr<ServerView> server = server_or_trouble(display, report);
    if (!server) return Status::COULD_NOT;
    EditedPath path({WhosePath::ME, true, ""}, report);
    if (!path.can_be_read()) return Status::COULD_NOT;
    const Elements served = server->font_path();
    const bool changed = path.elements != served;
    path.elements = served;
    Tally tally;
    return stored(path, tally, changed, report);
}

}  // namespace gw::fonts
