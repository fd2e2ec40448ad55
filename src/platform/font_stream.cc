// SPDX-License-Identifier: MIT
#include "platform/font_stream.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/host_paths.h"

namespace gw {

namespace font_stream {

namespace {

constexpr std::string_view MAGIC = "glyphward-everyone 1";

struct Word {
    NameTaken decision;
    std::string_view text;
};
constexpr std::array<Word, 3> DECISIONS = {
    {{NameTaken::REFUSE, "refuse"}, {NameTaken::REPLACE, "replace"}, {NameTaken::KEEP, "keep"}}};

bool is_control(char byte) {
    constexpr unsigned char DELETE = 0x7F;
    const auto code = static_cast<unsigned char>(byte);
    return code < static_cast<unsigned char>(' ') || code == DELETE;
}

}  // namespace

bool is_name(std::string_view name) {
    if (name.empty() || name.size() > NAME_LIMIT || name.front() == '.') return false;
    if (std::any_of(name.begin(), name.end(), [](char byte) { return byte == '/' || is_control(byte); }))
        return false;
    return name != FONT_INDEX_NAME && name != SCALABLE_INDEX_NAME && name != ALIAS_FILE_NAME &&
           name != UPR_FILE_NAME;
}

std::string beginning(NameTaken decision) {
    const auto* const word = std::find_if(DECISIONS.begin(), DECISIONS.end(),
                                          [&](const Word& each) { return each.decision == decision; });
    return std::string(MAGIC) + '\n' + std::string(word->text) + '\n';
}

std::string before_file(std::string_view name, std::uint64_t size) {
    return std::to_string(name.size()) + ':' + std::string(name) + ',' + std::to_string(size) + ':';
}

}  // namespace font_stream

using namespace font_stream;

bool FontStreamReader::wrong(const char* fault) {
    fault_ = fault;
    return go_on_if(false);
}

bool FontStreamReader::go_on_if(bool goes_on) {
    if (!goes_on) state_ = State::WRONG;
    return goes_on;
}

/// The first two lines.
bool FontStreamReader::take_line(char byte) {
    if (byte != '\n') {
        text_ += byte;
        return text_.size() <= MAGIC.size() || wrong("this is no stream of fonts");
    }
    const std::string line = std::exchange(text_, "");
    if (state_ == State::MAGIC) {
        state_ = State::DECISION;
        return line == MAGIC || wrong("this is no stream of fonts");
    }
    const auto* const word =
        std::find_if(DECISIONS.begin(), DECISIONS.end(), [&](const Word& each) { return each.text == line; });
    if (word == DECISIONS.end()) return wrong("it does not say what becomes of a font whose name is taken");
    decision_ = word->decision;
    state_ = State::NAME_LENGTH;
    return true;
}

/// A number that ends in ":", in its shortest form. What is too large is refused digit by digit.
bool FontStreamReader::take_digit(char byte, std::uint64_t limit, const char* too_much) {
    constexpr std::uint64_t BASE = 10;
    if (byte < '0' || byte > '9' || text_ == "0") return wrong("a length is no number");
    text_ += byte;
    number_ = number_ * BASE + static_cast<std::uint64_t>(byte - '0');
    return number_ <= limit || wrong(too_much);
}

bool FontStreamReader::end_name_length() {
    if (text_.empty()) return wrong("a length is no number");
    text_.clear();
    if (number_ > 0 && names_.size() >= COUNT_LIMIT) return wrong("there are too many files");
    state_ = number_ > 0 ? State::NAME : State::NAME_END;
    return true;
}

bool FontStreamReader::end_name() {
    number_ = 0;
    name_ = std::exchange(text_, "");
    if (name_.empty()) {
        state_ = State::OVER;
        return true;
    }
    if (!is_name(name_)) return wrong("a name is not one that a font file can have");
    if (!names_.insert(name_).second) return wrong("two files have one name");
    state_ = State::SIZE;
    return true;
}

bool FontStreamReader::end_size() {
    if (text_.empty()) return wrong("a length is no number");
    text_.clear();
    if (number_ > TOTAL_LIMIT - total_) return wrong("the files are larger than 1 GB together");
    total_ += number_;
    left_ = std::exchange(number_, 0);
    state_ = left_ > 0 ? State::BYTES : State::BYTES_END;
    return go_on_if(receiver_.begin_file(name_, left_));
}

bool FontStreamReader::take_comma(char byte) {
    if (byte != ',') return wrong("a length is not that of what follows");
    if (state_ == State::NAME_END) return end_name();
    state_ = State::NAME_LENGTH;
    return go_on_if(receiver_.end_file());
}

bool FontStreamReader::take_byte(char byte) {
    switch (state_) {
        case State::MAGIC:
        case State::DECISION:
            return take_line(byte);
        case State::NAME_LENGTH:
            return byte == ':' ? end_name_length() : take_digit(byte, NAME_LIMIT, "a name is too long");
        case State::NAME:
            text_ += byte;
            if (text_.size() == number_) state_ = State::NAME_END;
            return true;
        case State::SIZE:
            return byte == ':' ? end_size() : take_digit(byte, FILE_LIMIT, "a file is larger than 64 MB");
        case State::NAME_END:
        case State::BYTES_END:
            return take_comma(byte);
        case State::OVER:
            return wrong("something follows its end");
        case State::BYTES:
        case State::WRONG:
            break;
    }
    return false;
}

bool FontStreamReader::take(std::string_view piece) {
    while (!piece.empty()) {
        if (state_ != State::BYTES) {
            if (!take_byte(piece.front())) return false;
            piece.remove_prefix(1);
            continue;
        }
        const std::string_view bytes =
            piece.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(left_, piece.size())));
        if (!go_on_if(receiver_.take_bytes(bytes))) return false;
        left_ -= bytes.size();
        piece.remove_prefix(bytes.size());
        if (left_ == 0) state_ = State::BYTES_END;
    }
    return state_ != State::WRONG;
}

}  // namespace gw
