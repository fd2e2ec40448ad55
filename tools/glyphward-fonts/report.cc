// SPDX-License-Identifier: MIT
#include "glyphward-fonts/report.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "core/text.h"
#include "fontfiles/unicode_text.h"
#include "texts/reasons.h"

#include "glyphward-fonts/other_root.h"
#include "glyphward-fonts/terminal_text.h"

namespace gw::fonts {

namespace {

constexpr const char* PROGRAM = "glyphward-fonts";
constexpr int INDENTATION = 2;

std::string in_hexadecimal(std::string_view bytes) {
    static constexpr const char* DIGITS = "0123456789ABCDEF";
    constexpr unsigned BASE = 16;
    std::string text;
    for (const char byte : bytes) {
        text += DIGITS[static_cast<unsigned char>(byte) / BASE];
        text += DIGITS[static_cast<unsigned char>(byte) % BASE];
    }
    return text;
}

std::string reason_and_sequel(const Failure& failure) {
    const std::string sequel = sequel_in_language(failure);
    return reason_in_language(failure) + (sequel.empty() ? "" : "; " + sequel);
}

}  // namespace

Json in_json(std::string_view bytes) {
    if (is_utf8(bytes)) return Json(bytes);
    return Json{{"bytes", in_hexadecimal(bytes)}};
}

Json in_code(const Failure& failure) {
    Json code = {{"code", name_of(failure.reason)}};
    if (!failure.detail.empty()) code["detail"] = in_json(failure.detail);
    if (failure.reason == Reason::SYSTEM) code["errno"] = failure.error;
    return code;
}

std::string in_words(const Failure& failure) {
    return escaped(failure.subject) + ": " + reason_and_sequel(failure);
}

// What a command lists is in its document also where it could not begin.
Report::Report(std::string command, const Settings& settings)
    : command_(std::move(command)), settings_(settings) {
    const std::pair<const char*, const char*> lists[] = {
        {"list", "fonts"}, {"verify", "files"}, {"trash", "entries"}};
    for (const auto& [name, member] : lists) {
        if (command_ == name) document_[member] = Json::array();
    }
    if (command_ == "path show") document_["paths"] = Json::object();
}

void Report::write(std::string_view bytes) {
    while (!bytes.empty() && is_read_ && is_written_) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            is_read_ = errno != EPIPE;
            is_written_ = errno == EPIPE;
            if (!is_written_) trouble(Failure::of_system(text_of(Message::SAYS_STANDARD_OUTPUT), errno));
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void Report::line(std::string_view text) {
    if (!settings_.json && !settings_.quiet) write(for_terminal(text) + '\n');
}

void Report::record(std::string_view name) {
    if (settings_.json || settings_.quiet) return;
    write(settings_.nul ? std::string(name) + '\0' : for_terminal(escaped(name)) + '\n');
}

void Report::trouble(const Failure& failure) {
    trouble(failure.subject, reason_and_sequel(failure), in_code(failure));
}

void Report::trouble(const std::string& subject, Message why) {
    trouble(subject, std::string(text_of(why)));
}

void Report::trouble(const std::string& subject, const std::string& why) {
    trouble(subject, why, Json::object());
}

std::string Report::as_called(std::string text) const {
    if (left_out_.empty()) return text;
    for (std::size_t at = text.find(left_out_); at != std::string::npos; at = text.find(left_out_, at))
        text.erase(at, left_out_.size());
    return text;
}

void Report::trouble(const std::string& of, const std::string& reason, const Json& code) {
    const std::string subject = as_called(as_the_user_says(of));
    const std::string why = as_called(reason);
    const std::string line = for_terminal(escaped(subject) + ": " + escaped(why));
    std::fprintf(stderr, "%s: %s\n", PROGRAM, line.c_str());
    Json problem = {{"subject", in_json(subject)}, {"reason", in_json(why)}};
    problem.update(code);
    problems_.push_back(problem);
}

int Report::finish(Status status) {
    if (settings_.json && status != Status::USAGE) {
        Json all = {{"schema", SCHEMA_VERSION}, {"command", command_}, {"status", static_cast<int>(status)}};
        all.update(document_);
        all["problems"] = problems_;
        write(all.dump(INDENTATION) + '\n');
    }
    return static_cast<int>(is_written_ ? status : Status::FAILED);
}

}  // namespace gw::fonts
