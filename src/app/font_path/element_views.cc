// SPDX-License-Identifier: MIT
#include "app/font_path/element_views.h"

#include <unistd.h>

#include <map>

#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "diagnosis/element_state.h"
#include "texts/sentences.h"

namespace gw {

namespace {

using diagnosis::ElementReport;
using diagnosis::ElementState;
using diagnosis::Said;

/// A few words for an element of which the server gets nothing.
Message word_for_dead(Said reason) {
    switch (reason) {
        case Said::NO_SUCH_DIRECTORY:
        case Said::NOT_A_DIRECTORY:
            return Message::ELEMENT_NO_DIRECTORY;
        case Said::NO_INDEX:
        case Said::ALIASES_BUT_NO_INDEX:
            return Message::ELEMENT_NO_INDEX;
        case Said::SERVER_MAY_NOT_ENTER:
        case Said::SERVER_MAY_NOT_READ:
        case Said::NOT_FOR_EVERYBODY:
            return Message::ELEMENT_NOT_READABLE;
        default:
            return Message::ELEMENT_DEAD;
    }
}

ElementView view_of(const ElementReport& report) {
    ElementView view;
    view.is_served = report.place > 0;
    for (const diagnosis::Sentence& remark : report.remarks)
        view.why += (view.why.empty() ? "" : "\n") + in_words(remark);
    switch (report.state) {
        case ElementState::WORKS:
            view.state = Message::ELEMENT_SERVED;
            view.tone = Tone::GOOD;
            break;
        case ElementState::WORKS_IN_PART:
            view.state = Message::ELEMENT_SERVED_IN_PART;
            view.tone = Tone::DOUBTFUL;
            break;
        case ElementState::NOT_SERVED:
            view.state = Message::ELEMENT_NOT_SERVED;
            view.tone = Tone::DOUBTFUL;
            break;
        case ElementState::DEAD:
            view.state =
                report.remarks.empty() ? Message::ELEMENT_DEAD : word_for_dead(report.remarks.front().said);
            view.tone = Tone::BAD;
            break;
        case ElementState::NOT_KNOWN:
            view.state = view.is_served ? Message::ELEMENT_SERVED : Message::ELEMENT_NOT_SERVED;
            if (!view.is_served) view.tone = Tone::DOUBTFUL;
            break;
    }
    return view;
}

std::vector<ElementReport> reports_on(const std::vector<std::string>& elements) {
    diagnosis::Surroundings surroundings;
    surroundings.configured = elements;
    surroundings.user = ::geteuid();
    return diagnosis::look_at_path(*ServerUse::view(), surroundings).reports;
}

}  // namespace

// The server may have an element by another name than the configuration.
std::vector<ElementView> element_views(const std::vector<std::string>& elements) {
    const ServerUse server;
    if (ServerUse::view() == nullptr) {
        const ElementView unknown = {Message::ELEMENT_NOT_KNOWN, Tone::PLAIN, false,
                                     text_of(Message::NOW_NO_SERVER)};
        return std::vector<ElementView>(elements.size(), unknown);
    }
    const PathHost host = host_of(server_place());
    std::map<std::string, ElementView> by_text;
    std::map<ElementIdentity, ElementView> by_identity;
    for (const ElementReport& report : reports_on(elements)) {
        by_text.emplace(report.element, view_of(report));
        by_identity.emplace(identity_of_element(report.element, host), view_of(report));
    }
    std::vector<ElementView> views;
    for (const std::string& element : elements) {
        const auto found = by_text.find(element);
        views.push_back(found != by_text.end() ? found->second
                                               : by_identity[identity_of_element(element, host)]);
    }
    return views;
}

}  // namespace gw
