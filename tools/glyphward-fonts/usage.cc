// SPDX-License-Identifier: MIT
#include "glyphward-fonts/usage.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "texts/messages.h"

namespace gw::fonts {

namespace {

std::string_view before(std::string_view text, std::string_view mark) {
    return text.substr(0, text.find(mark));
}

std::string_view behind(std::string_view text, std::string_view mark) {
    const std::size_t at = text.find(mark);
    return at == std::string_view::npos ? text : text.substr(at + mark.size());
}

std::string missing(std::string_view text) {
    const std::string_view subject = before(text, " is required");
    if (subject == "A subcommand") return text_of(Message::HELP_NO_SUBCOMMAND);
    return text_of(Message::HELP_IS_MISSING, {subject});
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
    std::string all;
    for (const std::string& word : words) all.append(all.empty() ? "" : between).append(word);
    return all;
}

}  // namespace

// The texts of validators are ours already.
std::string in_words(const CLI::ParseError& error) {
    constexpr std::string_view NO_NUMBER = "Could not convert: ";
    const std::string_view text = error.what();
    const auto is_a = [&](CLI::ExitCodes kind) { return error.get_exit_code() == static_cast<int>(kind); };
    if (is_a(CLI::ExitCodes::ValidationError)) return std::string(text);
    if (is_a(CLI::ExitCodes::ExtrasError)) return text_of(Message::HELP_NOT_EXPECTED, {behind(text, ": ")});
    if (is_a(CLI::ExitCodes::RequiredError) && text.ends_with(" is required")) return missing(text);
    if (is_a(CLI::ExitCodes::ArgumentMismatch) && text.find(": ") != std::string_view::npos)
        return text_of(Message::HELP_NEEDS_VALUE, {before(text, ": ")});
    if (is_a(CLI::ExitCodes::ConversionError) && text.starts_with(NO_NUMBER))
        return text_of(Message::HELP_NO_NUMBER, {before(behind(text, NO_NUMBER), " = ")});
    return text_of(Message::HELP_NOT_UNDERSTOOD, {text});
}

CLI::Validator one_of(std::vector<std::string> words) {
    std::string shown = '{' + joined(words, ",") + '}';
    const auto check = [words = std::move(words)](const std::string& text) {
        const bool is_known = std::find(words.begin(), words.end(), text) != words.end();
        return is_known ? std::string() : text_of(Message::HELP_MUST_BE_ONE_OF, {joined(words, ", ")});
    };
    return {check, std::move(shown)};
}

CLI::Validator from_one() {
    const auto check = [](const std::string& text) {
        int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool is_number = error == std::errc() && end == text.data() + text.size() && number > 0;
        return std::string(is_number ? "" : text_of(Message::HELP_FROM_ONE));
    };
    return {check, ""};
}

CLI::Validator not_empty() {
    const auto check = [](const std::string& text) {
        return std::string(text.empty() ? text_of(Message::SAYS_IS_EMPTY) : "");
    };
    return {check, ""};
}

}  // namespace gw::fonts
