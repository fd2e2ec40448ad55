// SPDX-License-Identifier: MIT
//
// Writes a message catalogue's source, as gencat reads it, from the tables of texts: one program at build
// time instead of a second copy of every text.
//
//   make_catalogue                     the defaults, for the C locale
//   make_catalogue LANGUAGE CHARSET    "english", "german", ..., in that character set
//
// It is an error when the language is not complete, or when the character set cannot express a text.
#include <iconv.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "translations.h"

namespace {

using namespace gw::catalogue;

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "make_catalogue: %s\n", message.c_str());
    std::exit(1);
}

/// Turns UTF-8 into a character set. The C library does not convert texts of catalogues, so each catalogue is
/// in the character set of its locale.
class Converter {
  public:
    explicit Converter(const std::string& charset)
        : charset_(charset), descriptor_(::iconv_open(charset.c_str(), "UTF-8")) {
        if (descriptor_ == failed()) fail("no character set is called " + charset);
    }
    ~Converter() { ::iconv_close(descriptor_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    std::string operator()(std::string text) const {
        std::string result(4 * text.size() + 16, '\0');
        char* in = text.data();
        char* out = result.data();
        std::size_t in_left = text.size();
        std::size_t out_left = result.size();
        // The result counts the characters that were replaced by others.
        if (::iconv(descriptor_, &in, &in_left, &out, &out_left) != 0 || in_left != 0)
            fail(charset_ + " cannot write: " + text);
        result.resize(result.size() - out_left);
        return result;
    }

  private:
    // NOLINTNEXTLINE(performance-no-int-to-ptr): this is the value that POSIX gives "no conversion"
    static iconv_t failed() { return reinterpret_cast<iconv_t>(-1); }

    std::string charset_;
    iconv_t descriptor_;
};

Texts texts_of(std::string_view language) {
    if (language == "english") return english();
    for (const Language& candidate : languages()) {
        if (candidate.name != language) continue;
        const std::vector<std::string> errors = complaints(english(), candidate.texts);
        for (const std::string& error : errors)
            std::fprintf(stderr, "%s.def: %s\n", std::string(language).c_str(), error.c_str());
        if (!errors.empty()) fail("the texts of this language are not in order");
        return candidate.texts;
    }
    fail("no language is called " + std::string(language));
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
    if (argc != 1 && argc != 3) fail("it wants no argument, or a language and a character set");
    const std::string charset = argc == 3 ? argv[2] : "UTF-8";
    const Converter convert(charset);
    std::printf("$ codeset=%s\n$quote \"\n", charset.c_str());
    int set = 0;
    for (const Entry& entry : argc == 3 ? texts_of(argv[1]) : defaults()) {
        if (entry.set != set) std::printf("$set %d\n", set = entry.set);
        std::printf("%d %s\n", entry.number, convert(quoted(entry.text)).c_str());
    }
    return 0;
}
