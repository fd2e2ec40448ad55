// SPDX-License-Identifier: MIT
#include "platform/everyone_request.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace gw {

namespace {

using Json = nlohmann::json;

int digit_of(char c) {
    static constexpr std::string_view DIGITS = "0123456789ABCDEF";
    const std::size_t at = DIGITS.find(c);
    return at != std::string_view::npos ? static_cast<int>(at) : 0;
}

/// A text, or {"bytes": "C3.."} where it is no UTF-8; "" for what is neither.
std::string text_of(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (!value.is_object() || !value.contains("bytes") || !value["bytes"].is_string()) return "";
    constexpr int BASE = 16;
    const auto digits = value["bytes"].get<std::string>();
    std::string bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(digit_of(digits[at]) * BASE + digit_of(digits[at + 1]));
    return bytes;
}

std::string text_in(const Json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() ? text_of(*found) : "";
}

int number_in(const Json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() && found->is_number_integer() ? found->get<int>() : 0;
}

/// The texts of a list; none where there is no list.
std::vector<std::string> texts_in(const Json& object, const char* member) {
    std::vector<std::string> texts;
    const auto found = object.find(member);
    if (found == object.end() || !found->is_array()) return texts;
    for (const Json& each : *found) {
        if (std::string text = text_of(each); !text.empty()) texts.push_back(std::move(text));
    }
    return texts;
}

/// The objects of a list; none where there is no list.
std::vector<Json> objects_in(const Json& document, const char* member) {
    std::vector<Json> objects;
    const auto found = document.find(member);
    if (found == document.end() || !found->is_array()) return objects;
    for (const Json& each : *found) {
        if (each.is_object()) objects.push_back(each);
    }
    return objects;
}

EveryoneAnswer::Why why_in(const Json& object) {
    return {text_in(object, "reason"), text_in(object, "code"), text_in(object, "detail"),
            number_in(object, "errno")};
}

}  // namespace

EveryoneAnswer read_everyones_answer(const std::string& text) {
    EveryoneAnswer answer;
    const Json document = Json::parse(text, nullptr, false);
    if (!document.is_object()) return answer;
    // Where it could not begin, the problems say why.
    if (!document.contains("fonts") && objects_in(document, "problems").empty()) return answer;
    answer.kind = EveryoneAnswer::Kind::ANSWERED;
    answer.changed =
        document.contains("changed") && document["changed"].is_boolean() && document["changed"].get<bool>();
    for (const Json& font : objects_in(document, "fonts"))
        answer.fonts.push_back(
            {text_in(font, "font"), text_in(font, "result"), why_in(font), texts_in(font, "files")});
    for (const Json& problem : objects_in(document, "problems"))
        answer.problems.push_back({text_in(problem, "subject"), why_in(problem)});
    return answer;
}

}  // namespace gw
