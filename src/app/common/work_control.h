// SPDX-License-Identifier: MIT
//
// Work on many fonts under the user's control: the progress window counts the fonts and names them, Cancel
// ends the work at once, and the user is asked what to do when a font fails. What is whole by then stays, the
// font in work is taken back.
//
// Also in the middle of a font the windows are drawn and the progress window answers (see core/long_work.h).
// Everything else that the user does waits until the font is done, as it always did.
//
// All this is only where windows control work (see program/window_policy.h). Elsewhere these functions do
// nothing, and all work goes on to its end.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/program/work_record.h"
#include "model/font_report.h"
#include "texts/messages.h"

namespace gw {

/// The work in the work record begins, and its progress window is shown. `action` is what is done, with
/// "%s of %s" for the count.
void begin_control(Message action);
/// Before the next entry of the work, whose name this is. False when the user has cancelled the work: then it
/// is at its end, and the record says how much was not tried.
bool begin_entry(WorkRecord& work, const std::string& name);
/// Goes on to the next entry. This one is done or not; where it failed for these reasons, the user is asked
/// what to do, unless it was the last one. The work may be at its end then.
void end_entry(WorkRecord& work, bool is_done, const std::vector<std::string>& reasons);
/// So many entries are done; shown where the work is not under the user's control. Handles events then.
void show_done(int done);
/// What is done is made final now: Cancel has no effect any more.
void begin_to_finish();
/// Returns how many entries were not tried; 0 when the user did not stop the work.
unsigned end_control(WorkRecord& work);

/// Whether a font that failed stops the work to ask: as lines, what has come into the report since it had
/// `before` failures. Fonts that were always left out in silence are no reason to ask.
std::vector<std::string> reasons_since(const FontReport& report, std::size_t before);

/// "Stopped; 3 fonts were not tried."; empty for 0.
std::string untried_text(unsigned count);
/// The text with that behind it.
std::string with_untried(const std::string& text, const std::string& untried);

/// Work that is done in one go, while other work is forbidden. Its progress window appears when it takes
/// longer than a moment.
class ControlledWork {
  public:
    ControlledWork(Message title, Message action, std::size_t count);
    ~ControlledWork();
    ControlledWork(const ControlledWork&) = delete;
    ControlledWork& operator=(const ControlledWork&) = delete;

    /// Before an item, which counts from 1: whether to go on.
    bool begin(std::size_t number, const std::string& name);
    /// After an item that has failed for these reasons: whether to go on.
    bool goes_on_after(const std::vector<std::string>& reasons);
    /// See `begin_to_finish`.
    void finish();
    /// Whether the user has stopped it.
    [[nodiscard]] bool is_stopped() const;
};

}  // namespace gw
