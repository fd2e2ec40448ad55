// SPDX-License-Identifier: MIT
#include "store/journal.h"

#include <algorithm>
#include <optional>

#include "core/directory.h"
#include "store/numbers.h"
#include "store/trash_manifest.h"

namespace gw::journal {

static_assert(HEADING.size() == FIRST_HEADING.size());

namespace {

/// Reads the records of one version of the format.
class Reader {
  public:
    explicit Reader(bool has_full_stamps) : has_full_stamps_(has_full_stamps) {}

    std::optional<Record> operator()(std::string_view line) const {
        const std::string_view kind = take_word(line);
        if (kind == "put") return put(line);
        if (kind == "out") return out(line);
        if (kind == "back") return back(line);
        if (kind == "dir" && line == METRICS) return MadeDir{std::string(line)};
        if (kind == "line") return index_line(line);
        if (kind == "index") return replacement<Index>(line);
        if (kind == "register") return replacement<Register>(line);
        if (kind == "overwrite" && line.empty()) return Overwrite{};
        if (kind == "with") return with(line);
        if (kind == "and" && can_be_path(line)) return And{std::string(line)};
        return std::nullopt;
    }

  private:
    [[nodiscard]] std::optional<Record> put(std::string_view rest) const {
        const auto stamp = take_stamp(rest, has_full_stamps_);
        if (!stamp || !can_name(rest)) return std::nullopt;
        return Put{*stamp, std::string(rest)};
    }
    static std::optional<Record> out(std::string_view rest) {
        const auto number = number_in<unsigned>(take_word(rest));
        if (!number || !can_name(rest)) return std::nullopt;
        return Out{*number, std::string(rest)};
    }
    static std::optional<Record> back(std::string_view rest) {
        const auto stamp = take_stamp(rest, true);
        const auto number = number_in<unsigned>(take_word(rest));
        const std::string_view entry = take_word(rest);
        if (!stamp || !number || !trash::time_of_entry(entry) || !can_name(rest)) return std::nullopt;
        return Back{*stamp, *number, std::string(entry), std::string(rest)};
    }
    static std::optional<Record> index_line(std::string_view rest) {
        const auto number = number_in<int>(take_word(rest));
        if (!number || *number < 0 || *number > MOST_LINES) return std::nullopt;
        return Line{*number, std::string(rest) + '\n'};
    }
    template <class Kind>
    [[nodiscard]] std::optional<Record> replacement(std::string_view rest) const {
        const auto stamp = take_stamp(rest, has_full_stamps_);
        if (!stamp || (rest != "0" && rest != "1")) return std::nullopt;
        return Kind{*stamp, rest == "1"};
    }
    static std::optional<Record> with(std::string_view rest) {
        const std::string_view token = take_word(rest);
        const bool is_token =
            !token.empty() && token.find_first_not_of("0123456789abcdef") == std::string_view::npos;
        if (!is_token || !can_be_path(rest)) return std::nullopt;
        return With{std::string(token), std::string(rest)};
    }

    bool has_full_stamps_;
};

struct Writer {
    std::string operator()(const Put& put) const { return "put " + put.stamp.text() + ' ' + put.name; }
    std::string operator()(const Out& out) const {
        return "out " + std::to_string(out.number) + ' ' + out.name;
    }
    std::string operator()(const Back& back) const {
        return "back " + back.stamp.text() + ' ' + std::to_string(back.number) + ' ' + back.entry + ' ' +
               back.name;
    }
    std::string operator()(const MadeDir& dir) const { return "dir " + dir.name; }
    std::string operator()(const Line& line) const {
        return "line " + std::to_string(line.number) + ' ' + line.text.substr(0, line.text.find('\n'));
    }
    std::string operator()(const Index& index) const {
        return "index " + index.stamp.text() + (index.was ? " 1" : " 0");
    }
    std::string operator()(const Overwrite&) const { return "overwrite"; }
    std::string operator()(const Register& lines) const {
        return "register " + lines.stamp.text() + (lines.was ? " 1" : " 0");
    }
    std::string operator()(const With& with) const { return "with " + with.token + ' ' + with.path; }
    std::string operator()(const And& other) const { return "and " + other.path; }
};

}  // namespace

bool can_name(std::string_view name) {
    if (name.starts_with("afm/")) name.remove_prefix(METRICS.size() + 1);
    return !name.empty() && name != "." && name != ".." && name != OWN_DIRECTORY_NAME &&
           name.find_first_of(std::string_view("/\n\0", 3)) == std::string_view::npos;
}

bool can_be_path(std::string_view path) {
    return path.starts_with('/') && path.find_first_of(std::string_view("\n\0", 2)) == std::string_view::npos;
}

std::string line_of(const Record& record) {
    return std::visit(Writer(), record) + '\n';
}

Result<std::vector<Record>> parse(std::string_view text, const std::string& subject) {
    std::vector<Record> records;
    if (text.size() > static_cast<std::size_t>(MOST_BYTES)) return Failure{subject, Reason::NOT_A_JOURNAL};
    if (text.size() < HEADING.size() && (HEADING.starts_with(text) || FIRST_HEADING.starts_with(text)))
        return records;
    const bool is_old = text.starts_with(FIRST_HEADING);
    if (!is_old && !text.starts_with(HEADING)) return Failure{subject, Reason::NOT_A_JOURNAL};
    const Reader record_in(!is_old);
    text.remove_prefix(HEADING.size());
    // A part that did not reach the disk when the power failed is read as zeros.
    text = text.substr(0, text.find('\0'));
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
