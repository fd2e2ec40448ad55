// SPDX-License-Identifier: MIT
#include "app/samples/sample_text.h"

#include <cwchar>

#include "app/kit/widgets.h"
#include "app/samples/rc_sample_text.h"
#include "core/text.h"

#include <Xm/Xm.h>

std::string sample_text = "Aa Bb Cc Xx Yy Zz 0123456789";

namespace {

// What mbrlen returns for bytes that are no whole character.
constexpr auto INVALID_CHARACTER = static_cast<std::size_t>(-1);
constexpr auto INCOMPLETE_CHARACTER = static_cast<std::size_t>(-2);

/// The beginning of `text`: at most SAMPLE_TEXT_LIMIT bytes, ending with a whole character.
std::string bounded_sample(const std::string& text) {
    if (text.size() <= SAMPLE_TEXT_LIMIT) return text;
    std::mbstate_t state{};
    std::size_t end = 0;
    while (end < SAMPLE_TEXT_LIMIT) {
        const std::size_t length = std::mbrlen(text.data() + end, SAMPLE_TEXT_LIMIT - end, &state);
        if (length == INCOMPLETE_CHARACTER) break;
        if (length == INVALID_CHARACTER) state = {};
        // A byte that is not a character of this locale counts as one.
        end += length == 0 || length == INVALID_CHARACTER ? 1 : length;
    }
    return gw::truncated(text, end);
}

}  // namespace

gw::Outcome gw::keep_sample_text(const std::string& text) {
    if (Outcome kept = keep_rc_sample_text(text); !kept) return kept;
    sample_text = bounded_sample(text);
    sample_text_changes().emit(nullptr);
    return done();
}

int set_rc_sample_text(const char* text) {
    return gw::keep_sample_text(text) ? 1 : 0;
}

void set_sample_text_cb(Widget field, XtPointer /*client_data*/, XtPointer call_data) {
    const auto* change = static_cast<XmAnyCallbackStruct*>(call_data);
    // A change without an event was made by the program.
    if (change == nullptr || change->event == nullptr) return;
    sample_text = bounded_sample(gw::field_text(field));
    gw::sample_text_changes().emit(field);
}

namespace gw {

void read_sample_text() {
    sample_text = bounded_sample(get_rc_sample_text());
}

Signal<Widget>& sample_text_changes() {
    static Signal<Widget> changes;
    return changes;
}

}  // namespace gw
