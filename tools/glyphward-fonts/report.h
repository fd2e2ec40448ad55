// SPDX-License-Identifier: MIT
//
// What a command says: lines on standard output or one JSON document there, and troubles on standard error.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "core/failure.h"
#include "texts/messages.h"

#include "glyphward-fonts/settings.h"

#include <nlohmann/json.hpp>

namespace gw::fonts {

using Json = nlohmann::ordered_json;

/// The version of the schema of all documents; see docs/JSON.md.
inline constexpr int SCHEMA_VERSION = 1;

/// Bytes as a JSON value: a string where they are UTF-8, or else the object {"bytes": "C3.."} with two
/// hexadecimal digits for each byte.
[[nodiscard]] Json in_json(std::string_view bytes);

/// A failure for programs: its "code", the name of the reason, and "detail" and "errno", where it has them.
[[nodiscard]] Json in_code(const Failure& failure);

class Report {
  public:
    Report(std::string command, const Settings& settings);

    /// A line of text, without its newline. Not shown with `json` or `quiet`.
    void line(std::string_view text);
    /// A name or path as a record of its own: in a line, escaped, or as it is with a NUL behind it.
    void record(std::string_view name);
    /// Something that went wrong: a line on standard error, also with `quiet`, and an entry of "problems".
    void trouble(const Failure& failure);
    void trouble(const std::string& subject, const std::string& why);
    void trouble(const std::string& subject, Message why);
    /// The same with what `in_code` says of it.
    void trouble(const std::string& subject, const std::string& why, const Json& code);
    /// Files in this directory, which ends in "/", are called without it.
    void leave_out(std::string directory) { left_out_ = std::move(directory); }
    /// A text with the names of files as they are called.
    [[nodiscard]] std::string as_called(std::string text) const;

    /// The members that the command adds to its document.
    Json& document() { return document_; }
    /// Writes what is still to be written, and returns the exit status of the program. Output that nobody
    /// reads any more is no failure; output for which there is no room is.
    int finish(Status status);

    [[nodiscard]] const Settings& settings() const { return settings_; }

  private:
    void write(std::string_view bytes);

    std::string command_;
    Settings settings_;
    Json document_ = Json::object();
    Json problems_ = Json::array();
    std::string left_out_;
    bool is_read_ = true;     // somebody reads standard output
    bool is_written_ = true;  // and all of it could be written
};

/// `failure` in the user's language.
[[nodiscard]] std::string in_words(const Failure& failure);

}  // namespace gw::fonts
