// SPDX-License-Identifier: MIT
//
// Writes the message catalogue's source, as gencat reads it, from the table of texts: one program at build
// time instead of a second copy of every text. With the argument "english" it writes that of English locales.
#include <algorithm>
#include <cstdio>
#include <iterator>
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

constexpr Entry ENGLISH[] = {
#define MSG(set, number, text) {set, number, text},
#include "english.def"
#undef MSG
};

std::string_view english(const Entry& entry) {
    const Entry* found = std::find_if(std::begin(ENGLISH), std::end(ENGLISH), [&](const Entry& other) {
        return other.set == entry.set && other.number == entry.number;
    });
    return found != std::end(ENGLISH) ? found->text : entry.text;
}

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

int main(int argc, char** argv) {
    const bool is_english = argc > 1 && std::string_view(argv[1]) == "english";
    std::puts("$ codeset=UTF-8\n$quote \"");
    int set = 0;
    for (const Entry& entry : TABLE) {
        if (entry.set != set) std::printf("$set %d\n", set = entry.set);
        std::printf("%d %s\n", entry.number, quoted(is_english ? english(entry) : entry.text).c_str());
    }
    return 0;
}
