// SPDX-License-Identifier: MIT
#include "end_to_end/doctor_window.h"

#include "end_to_end/program.h"
#include "end_to_end/selected_text.h"
#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr int FIRST_LINE = 10;
constexpr int BEGINNING = 20;  // of a line in a text
constexpr const char* NOTHING_COPIED = "nothing was copied";

}  // namespace

DoctorWindow::DoctorWindow(const Desktop& desktop) : desktop_(desktop) {
    wait_until([this] { return identify(); });
}

bool DoctorWindow::identify() {
    window = desktop_.window_titled(TITLE);
    if (window == 0) return false;
    const auto part = [this](const char* name) { return desktop_.part_named(window, name); };
    question_text = part("question_text");
    ask_button = part("ask_button");
    clear_button = part("clear_button");
    answer_text = part("answer_text");
    report_button = part("report_button");
    close_button = part("close_button");
    return is_there();
}

std::string DoctorWindow::ask(const std::string& message) const {
    desktop_.click_middle(clear_button);
    const SelectedText pasted(message);
    desktop_.click(question_text, BEGINNING, FIRST_LINE, nullptr, Button2);
    desktop_.click_middle(ask_button);
    return changed_verdict("");
}

std::string DoctorWindow::verdict() const {
    // Where nothing can be selected, nothing is copied.
    const SelectedText before(NOTHING_COPIED);
    desktop_.click(answer_text, BEGINNING, FIRST_LINE);
    desktop_.key("Control_L", "a");
    desktop_.key("Control_L", "c");
    return copied();
}

std::string DoctorWindow::report() const {
    const SelectedText before(NOTHING_COPIED);
    desktop_.click_middle(report_button);
    std::string text;
    wait_until([&] {
        text = copied();
        return !text.empty();
    });
    return text;
}

void DoctorWindow::show(const char* toggle) const {
    desktop_.click(desktop_.part_named(window, toggle), FIRST_LINE, FIRST_LINE);
}

std::string DoctorWindow::cure(int line) const {
    const std::string before = verdict();
    press_do(line);
    return changed_verdict(before);
}

void DoctorWindow::press_do(int line) const {
    show("cures_toggle");
    desktop_.click(desktop_.part_named(window, "cures_list"), BEGINNING,
                   FIRST_LINE + line * list_line_height());
    desktop_.click_middle(desktop_.part_named(window, "do_button"));
}

std::string DoctorWindow::undo() const {
    const std::string before = verdict();
    show("cures_toggle");
    desktop_.click_middle(desktop_.part_named(window, "undo_button"));
    return changed_verdict(before);
}

std::string DoctorWindow::changed_verdict(const std::string& before) const {
    std::string now;
    const bool is_new = wait_until([&] {
        now = verdict();
        // While the program is at work, nothing is copied.
        return !now.empty() && now != before;
    });
    return is_new ? now : "";
}

std::string DoctorWindow::copied() const {
    std::string text = desktop_.clipboard();
    return text == NOTHING_COPIED ? "" : text;
}

}  // namespace gw::e2e
