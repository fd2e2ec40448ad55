// SPDX-License-Identifier: MIT
//
// The configuration database. The first line of an input is the value that its font path gets, the rest is
// the file.
#include <optional>

#include "fontpath/font_path_files.h"
#include "fuzz.h"
#include "platform/config_db.h"

namespace {

constexpr const char* NAME = "VTconfig";

std::string path() {
    return gw::fuzz::directory().file(NAME);
}

std::optional<std::string> attribute(const char* name) {
    char* value = config_db_get_attribute("XDISPLAY", "0", name);
    if (value == nullptr) return std::nullopt;
    std::string text(value);
    config_db_free_attribute(value);
    return text;
}

/// A database that was only opened is written as it was.
bool try_unchanged(std::string_view text) {
    const int opened = config_db_open(path().c_str(), 0, 1, 0, 0);
    if (opened > 1) {
        config_db_close(nullptr);
        GW_MUST_HOLD(!gw::write_to_vtconfig(path(), "/a/"), text);
        GW_MUST_HOLD(gw::fuzz::directory().read(NAME) == text, text);
        return false;
    }
    GW_MUST_HOLD(config_db_close(path().c_str()) == 0, text);
    GW_MUST_HOLD(gw::fuzz::directory().read(NAME) == text, text);
    return true;
}

/// The bytes of the file when the value is set once more.
std::string written_again(const std::string& value) {
    GW_MUST_HOLD(static_cast<bool>(gw::write_to_vtconfig(path(), value.c_str())), value);
    return gw::fuzz::directory().read(NAME);
}

/// The new value is read back, and a neighbour keeps its own.
void try_setting(const std::string& value, std::string_view text) {
    config_db_open(path().c_str(), 0, 1, 0, 0);
    const std::optional<std::string> neighbour = attribute("neighbour");
    GW_MUST_HOLD(config_db_close(nullptr) == 0, text);
    GW_MUST_HOLD(static_cast<bool>(gw::write_to_vtconfig(path(), value.c_str())), text);

    const std::string written = gw::fuzz::directory().read(NAME);
    GW_MUST_HOLD(config_db_open(path().c_str(), 0, 1, 0, 0) == 0, written);
    GW_MUST_HOLD(attribute("fontpath") == value, written);
    GW_MUST_HOLD(attribute("neighbour") == neighbour, written);
    GW_MUST_HOLD(config_db_close(nullptr) == 0, written);
    // The resource manager drops blanks at the end of a key, so the first writing may differ from the others.
    const std::string second = written_again(value);
    GW_MUST_HOLD(written_again(value) == second, written);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view text = input;
    const std::string value(before_nul(take_line(text)));
    directory().write(NAME, text);
    if (try_unchanged(text)) try_setting(value, text);
    ElementList elements;
    const ElementsOwner owner(elements);
    const Outcome outcome = read_config_font_path(path(), elements, "/a/,/b/");
    GW_MUST_HOLD(static_cast<bool>(outcome), text);
    for (const GW_STRING* element : elements) GW_MUST_HOLD(element->get_len() > 0, text);
}
