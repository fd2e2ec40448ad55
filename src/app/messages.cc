// SPDX-License-Identifier: MIT
#include "app/messages.h"

#include <nl_types.h>

#include <array>
#include <cstddef>

nl_catd catd = reinterpret_cast<nl_catd>(
    -1);  // NOLINT(performance-no-int-to-ptr): the value that POSIX gives "no catalogue"

namespace gw {

namespace {

struct Entry {
    int set;
    int number;
    const char* text;
};

constexpr Entry TABLE[] = {
#define MSG(set, number, name, text) {set, number, text},
#include "app/messages.def"
#undef MSG
};

bool is_open() {
    return catd != reinterpret_cast<nl_catd>(-1);
}  // NOLINT(performance-no-int-to-ptr)

}  // namespace

const char* text_of(Message message) {
    const Entry& entry = TABLE[static_cast<std::size_t>(message)];
    return ::catgets(catd, entry.set, entry.number, entry.text);
}

void open_catalogue() {
    catd = ::catopen("glyphward", NL_CAT_LOCALE);
}

void close_catalogue() {
    if (!is_open()) return;
    ::catclose(catd);
    catd = reinterpret_cast<nl_catd>(-1);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace gw
