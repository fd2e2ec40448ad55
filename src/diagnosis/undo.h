// SPDX-License-Identifier: MIT
//
// How a deed is undone: once.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/failure.h"

namespace gw::diagnosis {

/// `undo`, which is refused when it has succeeded before. `subject` is for that message.
inline std::function<Outcome()> once(std::string subject, std::function<Outcome()> undo) {
    return [subject = std::move(subject), undo = std::move(undo), is_undone = false]() mutable -> Outcome {
        if (is_undone) return Failure{subject, Reason::UNDONE_ALREADY};
        Outcome outcome = undo();
        is_undone = static_cast<bool>(outcome);
        return outcome;
    };
}

}  // namespace gw::diagnosis
