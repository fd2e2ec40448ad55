// SPDX-License-Identifier: MIT
//
// What the window "Why Is a Font Missing?" asks: functions, so that a test can play the answers.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/failure.h"
#include "diagnosis/answer.h"
#include "diagnosis/cure.h"
#include "diagnosis/question.h"

namespace gw {

struct DoctorEngine {
    std::function<std::vector<diagnosis::Question>(std::string_view pasted)> questions;
    std::function<diagnosis::Answer(const diagnosis::Question& question)> answer;
    std::function<Result<diagnosis::Deed>(const diagnosis::Cure& cure, const diagnosis::Progress& progress)>
        carry_out;
    /// How what was asked for becomes another name of a font that is near to it; none where it cannot.
    std::function<std::optional<diagnosis::Cure>(const diagnosis::Answer& answer,
                                                 const diagnosis::NearFont& font)>
        alias;
    std::function<std::string(const diagnosis::Answer& answer)> report;
};

/// What the window asks; by default the diagnosis, about the program's X server.
DoctorEngine& doctor_engine();

}  // namespace gw
