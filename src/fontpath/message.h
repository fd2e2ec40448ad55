// SPDX-License-Identifier: MIT
//
// What a process and its child tell each other, as bytes: numbers and texts, in an order that both know. The
// bytes never leave this host, so numbers are as the processor has them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

class MessageWriter {
  public:
    void number(std::int64_t value) { bytes_.append(reinterpret_cast<const char*>(&value), sizeof value); }
    void text(std::string_view text) {
        number(static_cast<std::int64_t>(text.size()));
        bytes_ += text;
    }
    void texts(const std::vector<std::string>& all) {
        number(static_cast<std::int64_t>(all.size()));
        for (const std::string& one : all) text(one);
    }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

/// Behind the end of the message there are only zeros and empty texts.
class MessageReader {
  public:
    /// Refers to the bytes.
    explicit MessageReader(std::string_view bytes) : rest_(bytes) {}

    std::int64_t number() {
        std::int64_t value = 0;
        if (rest_.size() < sizeof value) {
            rest_ = {};
            return 0;
        }
        std::memcpy(&value, rest_.data(), sizeof value);
        rest_.remove_prefix(sizeof value);
        return value;
    }
    std::string text() {
        const std::int64_t size = number();
        const auto fitting = size < 0 ? 0 : std::min(static_cast<std::size_t>(size), rest_.size());
        std::string text(rest_.substr(0, fitting));
        rest_.remove_prefix(fitting);
        return text;
    }
    std::vector<std::string> texts() {
        std::vector<std::string> all;
        for (std::int64_t left = number(); left > 0 && !rest_.empty(); --left) all.push_back(text());
        return all;
    }

  private:
    std::string_view rest_;
};

}  // namespace gw
