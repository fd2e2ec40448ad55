// SPDX-License-Identifier: MIT
//
// The form in which font files go to the program that installs them for everyone: a stream of names, lengths
// and bytes, described in docs/EVERYONE.md. It names no path, and its end is marked, so a stream that was cut
// short is never taken for a whole one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace gw {

/// What becomes of a font whose name an installed one has.
enum class NameTaken { REFUSE, REPLACE, KEEP };

namespace font_stream {

inline constexpr std::uint64_t FILE_LIMIT = 64ULL * 1024 * 1024;     ///< bytes of one file
inline constexpr std::uint64_t TOTAL_LIMIT = 1024ULL * 1024 * 1024;  ///< bytes of all files
inline constexpr std::size_t COUNT_LIMIT = 10000;                    ///< files
inline constexpr std::size_t NAME_LIMIT = 200;                       ///< bytes of a name

/// Whether a file of the stream may be called so: no directory in it, no control character, no dot at its
/// beginning, and no file that a font directory has besides fonts.
[[nodiscard]] bool is_name(std::string_view name);

/// The parts of a stream: its beginning; what stands before the bytes of a file, and behind them; its end.
[[nodiscard]] std::string beginning(NameTaken decision);
[[nodiscard]] std::string before_file(std::string_view name, std::uint64_t size);
inline constexpr std::string_view BEHIND_FILE = ",";
inline constexpr std::string_view END = "0:,";

}  // namespace font_stream

/// Reads a stream piece by piece, as it arrives, and keeps no more of it than a name.
class FontStreamReader {
  public:
    /// Who gets the files. Each returns whether to go on.
    struct Receiver {
        std::function<bool(const std::string& name, std::uint64_t size)> begin_file;
        std::function<bool(std::string_view bytes)> take_bytes;
        std::function<bool()> end_file;
    };

    explicit FontStreamReader(Receiver receiver) : receiver_(std::move(receiver)) {}

    /// Takes the next bytes. False when the stream is wrong, or the receiver does not go on: then no more is
    /// read.
    bool take(std::string_view piece);
    /// Whether the end has come.
    [[nodiscard]] bool is_complete() const { return state_ == State::OVER; }
    /// Why `take` was false; "" when the receiver has refused.
    [[nodiscard]] const std::string& fault() const { return fault_; }
    [[nodiscard]] NameTaken decision() const { return decision_; }

  private:
    enum class State { MAGIC, DECISION, NAME_LENGTH, NAME, NAME_END, SIZE, BYTES, BYTES_END, OVER, WRONG };

    bool take_byte(char byte);
    bool take_line(char byte);
    bool take_digit(char byte, std::uint64_t limit, const char* too_much);
    bool end_name_length();
    bool end_name();
    bool end_size();
    bool take_comma(char byte);
    bool go_on_if(bool goes_on);
    bool wrong(const char* fault);

    Receiver receiver_;
    State state_ = State::MAGIC;
    NameTaken decision_ = NameTaken::REFUSE;
    std::string text_;          // the line, number or name that is being read
    std::uint64_t number_ = 0;  // the number that was read
    std::uint64_t left_ = 0;    // bytes of the file
    std::uint64_t total_ = 0;
    std::set<std::string, std::less<>> names_;
    std::string name_;
    std::string fault_;
};

}  // namespace gw
