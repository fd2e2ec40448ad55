// SPDX-License-Identifier: MIT
#include "end_to_end/victim.h"

#include <vector>

#include "end_to_end/other_program.h"
#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr const char* TITLE = "A Victim";
constexpr const char* TEXT = "Glyph 0123";
constexpr const char* FIRST_OF_GRID = "0";  // xfd shows characters one by one

std::vector<std::string> command_of(Victim victim, const std::string& font) {
    switch (victim) {
        case Victim::XTERM:
            return {"xterm", "-T",
                    TITLE,   "-fn",
                    font,    "-bg",
                    "white", "-fg",
                    "black", "+sb",
                    "-e",    "sh",
                    "-c",    std::string("printf '") + TEXT + "'; exec sleep 1000"};
        case Victim::XFD:
            return {"xfd", "-title", TITLE, "-bg", "white", "-fg", "black", "-fn", font};
        case Victim::XMESSAGE:
            return {"xmessage", "-title", TITLE, "-bg", "white", "-fg", "black", "-fn", font, TEXT};
        case Victim::MOTIF_TEXT:
            return {MOTIF_TEXT_PROGRAM,   "-title", TITLE, "-bg", "white", "-fg", "black", "-xrm",
                    "*fontList: " + font, TEXT};
    }
    return {};
}

}  // namespace

std::string complaint_of(Victim victim, const std::string& font, const Desktop& desktop) {
    OtherProgram program(command_of(victim, font));
    std::string errors;
    wait_until([&] {
        errors = program.errors();
        return errors.find('\n') != std::string::npos || desktop.is_visible(TITLE) || program.has_ended();
    });
    // A program that ends has written all before that.
    return errors.empty() ? program.errors() : errors;
}

bool shows_text(Victim victim, const std::string& asked, const std::string& named, const Desktop& desktop) {
    const DrawnText text(named, victim == Victim::XFD ? FIRST_OF_GRID : TEXT);
    if (text.ink() == 0) return false;
    OtherProgram program(command_of(victim, asked));
    return wait_until([&] {
               const Window window = desktop.window_titled(TITLE);
               if (window == 0) return program.has_ended();
               const Rectangle place = desktop.place_of(window);
               return text.is_in(desktop.pixels(place), place.width);
           }) &&
           !program.has_ended();
}

}  // namespace gw::e2e
