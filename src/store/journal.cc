// SPDX-License-Identifier: MIT
#include "store/journal.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "core/directory.h"

namespace gw::journal {

namespace {

/// Removes the word at the beginning of `rest`, and the blank behind it.
std::string_view next_word(std::string_view& rest) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    return word;
}

template <class Number>
std::optional<Number> number_in(std::string_view word) {
    Number number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return number;
}

std::optional<Record> index_record(ino_t inode, std::string_view was) {
    if (was != "0" && was != "1") return std::nullopt;
    return Index{inode, was == "1"};
}

std::optional<Record> record_in(std::string_view line) {
    const std::string_view kind = next_word(line);
    if (kind == "dir")
        return line == METRICS ? std::optional<Record>(MadeDir{std::string(line)}) : std::nullopt;
    const std::string_view word = next_word(line);
    if (kind == "line") {
        const auto number = number_in<int>(word);
        if (!number || *number < 0 || *number > MOST_LINES) return std::nullopt;
        return Line{*number, std::string(line) + '\n'};
    }
    if (kind == "out") {
        const auto number = number_in<unsigned>(word);
        if (!number || !can_name(line)) return std::nullopt;
        return Out{*number, std::string(line)};
    }
    const auto number = number_in<ino_t>(word);
    if (!number) return std::nullopt;
    if (kind == "index") return index_record(*number, line);
    if (kind != "put" || !can_name(line)) return std::nullopt;
    return Put{*number, std::string(line)};
}

struct Writer {
    std::string operator()(const Put& put) const {
        return "put " + std::to_string(put.inode) + ' ' + put.name;
    }
    std::string operator()(const Out& out) const {
        return "out " + std::to_string(out.number) + ' ' + out.name;
    }
    std::string operator()(const MadeDir& dir) const { return "dir " + dir.name; }
    std::string operator()(const Line& line) const {
        return "line " + std::to_string(line.number) + ' ' + line.text.substr(0, line.text.find('\n'));
    }
    std::string operator()(const Index& index) const {
        return "index " + std::to_string(index.inode) + (index.was ? " 1" : " 0");
    }
};

}  // namespace

bool can_name(std::string_view name) {
    if (name.starts_with("afm/")) name.remove_prefix(METRICS.size() + 1);
    return !name.empty() && name != "." && name != ".." && name != OWN_DIRECTORY_NAME &&
           name.find_first_of(std::string_view("/\n\0", 3)) == std::string_view::npos;
}

std::string line_of(const Record& record) {
    return std::visit(Writer(), record) + '\n';
}

Result<std::vector<Record>> parse(std::string_view text, const std::string& subject) {
    std::vector<Record> records;
    if (text.size() < HEADING.size() && HEADING.starts_with(text)) return records;
    if (!text.starts_with(HEADING)) return Failure{subject, Reason::NOT_A_JOURNAL};
    text.remove_prefix(HEADING.size());
    for (std::size_t newline = text.find('\n'); newline != std::string_view::npos;
         newline = text.find('\n')) {
        std::optional<Record> record = record_in(text.substr(0, newline));
        if (!record) return Failure{subject, Reason::NOT_A_JOURNAL};
        records.push_back(std::move(*record));
        text.remove_prefix(newline + 1);
    }
    return records;
}

}  // namespace gw::journal
