// SPDX-License-Identifier: MIT
//
// Writes the message catalogue's source, as gencat reads it, from the table of texts: one program at build
// time instead of a second copy of every text.
#include <cstdio>
#include <string>
#include <string_view>

namespace {

struct Entry {
    int set;
    int number;
    std::string_view text;
};

constexpr Entry TABLE[] = {
#define MSG(set, number, name, text) {set, number, text},
#include "app/messages.def"
#undef MSG
};

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '\n') {
            result += "\\n";
        } else {
            if (c == '"' || c == '\\') result += '\\';
            result += c;
        }
    }
    return result + '"';
}

}  // namespace

int main() {
    std::puts("$ codeset=UTF-8\n$quote \"");
    int set = 0;
    for (const Entry& entry : TABLE) {
        if (entry.set != set) std::printf("$set %d\n", set = entry.set);
        std::printf("%d %s\n", entry.number, quoted(entry.text).c_str());
    }
    return 0;
}
