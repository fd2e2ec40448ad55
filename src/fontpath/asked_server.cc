// SPDX-License-Identifier: MIT
//
//   question        details           answer
//   (none)                            whether the socket is local, process, whether the user is known, user,
//                                     the screen's resolution across and down
//   ALIVE                             nothing
//   FONT_PATH                         elements
//   NAMES           pattern, most     names
//   OPEN            name              whether it was opened; the facts of `OpenedFont`, in their order
//   FONTSET         locale, names     whether it was made, missing charsets, names of the members
//   SET_FONT_PATH   elements          whether the server takes them
#include "fontpath/asked_server.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <vector>

#include "fontpath/message.h"
#include "fontpath/server_place.h"
#include "fontpath/server_view.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace gw {

namespace {

constexpr std::size_t LONGEST_PATTERN = 65535;  // that the protocol has room for
constexpr int MOST_NAMES = 65535;
/// No font has a longer name (format: X logical font description).
constexpr std::size_t LONGEST_NAME = 255;

bool is_refused = false;

int note_error(Display*, XErrorEvent*) {
    is_refused = true;
    return 0;
}

int end_here(Display*) {
    ::_exit(1);
}

// --- fonts -------------------------------------------------------------------

bool has_letters(const XFontStruct& font) {
    constexpr unsigned FIRST_LETTER = 32;
    constexpr unsigned LAST_LETTER = 126;
    if (font.min_byte1 > 0) return false;
    const unsigned first = font.min_char_or_byte2;
    const unsigned last = std::min(LAST_LETTER, font.max_char_or_byte2);
    for (unsigned code = std::max(FIRST_LETTER, first); code <= last; ++code) {
        const XCharStruct& box = font.per_char == nullptr ? font.max_bounds : font.per_char[code - first];
        if (box.width != 0) return true;
    }
    return false;
}

/// Its property FONT; "" where it has none.
std::string own_name(Display* display, XFontStruct& font) {
    unsigned long atom = 0;
    if (XGetFontProperty(&font, XA_FONT, &atom) == False) return {};
    char* text = XGetAtomName(display, atom);
    if (text == nullptr) return {};
    std::string name = text;
    XFree(text);
    return name;
}

void describe(Display* display, XFontStruct& font, MessageWriter& answer) {
    const long rows = static_cast<long>(font.max_byte1) - static_cast<long>(font.min_byte1) + 1;
    const long columns =
        static_cast<long>(font.max_char_or_byte2) - static_cast<long>(font.min_char_or_byte2) + 1;
    answer.text(own_name(display, font));
    answer.number(font.ascent);
    answer.number(font.descent);
    answer.number(font.max_bounds.width);
    answer.number(rows * columns);
    answer.number(has_letters(font) ? 1 : 0);
}

void open_font(Display* display, const std::string& name, MessageWriter& answer) {
    XFontStruct* font = name.size() > LONGEST_PATTERN ? nullptr : XLoadQueryFont(display, name.c_str());
    answer.number(font == nullptr ? 0 : 1);
    if (font == nullptr) return;
    describe(display, *font, answer);
    XFreeFont(display, font);
}

// --- font sets ---------------------------------------------------------------

/// The base names without those that no font can have: Xlib copies them into fixed buffers.
std::string fitting(const std::string& base_names) {
    std::string kept;
    for (std::size_t start = 0; start <= base_names.size();) {
        const std::size_t end = std::min(base_names.find(',', start), base_names.size());
        const std::string name = base_names.substr(start, end - start);
        if (name.size() <= LONGEST_NAME) kept += (kept.empty() ? "" : ",") + name;
        start = end + 1;
    }
    return kept;
}

std::vector<std::string> member_names(XFontSet set) {
    XFontStruct** fonts = nullptr;
    char** names = nullptr;
    const int count = XFontsOfFontSet(set, &fonts, &names);
    std::vector<std::string> members;
    members.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) members.emplace_back(names[i] == nullptr ? "" : names[i]);
    return members;
}

void make_fontset(Display* display, const std::string& base_names, MessageWriter& answer) {
    const std::string names = fitting(base_names);
    // For a list of blanks Xlib releases memory that it does not have.
    if (names.find_first_not_of(" \t\n\v\f\r") == std::string::npos) return answer.number(0);
    char** missing = nullptr;
    int count = 0;
    char* unused = nullptr;
    XFontSet set = XCreateFontSet(display, names.c_str(), &missing, &count, &unused);
    answer.number(set == nullptr ? 0 : 1);
    answer.texts(missing == nullptr ? std::vector<std::string>()
                                    : std::vector<std::string>(missing, missing + count));
    XFreeStringList(missing);
    if (set == nullptr) return;
    answer.texts(member_names(set));
    XFreeFontSet(display, set);
}

// --- lists -------------------------------------------------------------------

void list_font_path(Display* display, MessageWriter& answer) {
    int count = 0;
    char** elements = XGetFontPath(display, &count);
    if (elements == nullptr) return;
    answer.texts({elements, elements + count});
    XFreeFontPath(elements);
}

void list_names(Display* display, MessageReader& question, MessageWriter& answer) {
    const std::string pattern = question.text();
    const auto most = std::clamp<std::int64_t>(question.number(), 0, MOST_NAMES);
    if (pattern.size() > LONGEST_PATTERN) return;
    int count = 0;
    char** names = XListFonts(display, pattern.c_str(), static_cast<int>(most), &count);
    if (names == nullptr) return;
    answer.texts({names, names + count});
    XFreeFontNames(names);
}

void set_font_path(Display* display, std::vector<std::string> elements, MessageWriter& answer) {
    std::vector<char*> path;
    path.reserve(elements.size());
    for (std::string& element : elements) path.push_back(element.data());
    XSetFontPath(display, path.data(), static_cast<int>(path.size()));
    XSync(display, False);
    answer.number(is_refused ? 0 : 1);
}

// --- messages ----------------------------------------------------------------

/// The server knows two resolutions only (format: X server, dix).
int resolution_of(int pixels, int millimeters) {
    constexpr double MILLIMETERS_PER_INCH = 25.4;
    constexpr double COARSE = 88;
    constexpr int LOW = 75;
    constexpr int HIGH = 100;
    return millimeters > 0 && pixels * MILLIMETERS_PER_INCH / millimeters < COARSE ? LOW : HIGH;
}

void introduce(Display* display, MessageWriter& answer) {
    const std::optional<Peer> peer = peer_of(ConnectionNumber(display));
    answer.number(peer ? 1 : 0);
    answer.number(peer ? peer->process : 0);
    answer.number(peer && peer->user ? 1 : 0);
    answer.number(peer && peer->user ? static_cast<std::int64_t>(*peer->user) : 0);
    answer.number(resolution_of(DisplayWidth(display, 0), DisplayWidthMM(display, 0)));
    answer.number(resolution_of(DisplayHeight(display, 0), DisplayHeightMM(display, 0)));
}

std::string answer_to(Display* display, const std::string& asked) {
    MessageReader question(std::string_view(asked).substr(1));
    MessageWriter answer;
    is_refused = false;
    switch (static_cast<ServerQuestion>(asked.front())) {
        case ServerQuestion::ALIVE:
            XSync(display, False);
            break;
        case ServerQuestion::FONT_PATH:
            list_font_path(display, answer);
            break;
        case ServerQuestion::NAMES:
            list_names(display, question, answer);
            break;
        case ServerQuestion::OPEN:
            open_font(display, question.text(), answer);
            break;
        case ServerQuestion::FONTSET: {
            std::setlocale(LC_CTYPE, question.text().c_str());
            make_fontset(display, question.text(), answer);
            break;
        }
        case ServerQuestion::SET_FONT_PATH:
            set_font_path(display, question.texts(), answer);
            break;
    }
    return answer.bytes();
}

/// Some events, as of another keyboard, come without being asked for.
void drop_events(Display* display) {
    XEvent event;
    while (XEventsQueued(display, QueuedAlready) > 0) XNextEvent(display, &event);
}

bool receive(int socket, void* bytes, std::size_t size) {
    return size == 0 || ::recv(socket, bytes, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

/// The next message; empty when there is none any more.
std::string next_message(int socket) {
    MessageLength length = 0;
    if (!receive(socket, &length, sizeof length)) return {};
    std::string message(length, '\0');
    if (!receive(socket, message.data(), message.size())) return {};
    return message;
}

}  // namespace

bool send_message(int socket, std::string_view bytes) {
    const auto length = static_cast<MessageLength>(bytes.size());
    std::string message(reinterpret_cast<const char*>(&length), sizeof length);
    message += bytes;
    for (std::string_view rest = message; !rest.empty();) {
        const ssize_t sent = ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void serve_questions(int socket, const std::string& display_name) {
    XSetErrorHandler(note_error);
    XSetIOErrorHandler(end_here);
    Display* display = XOpenDisplay(display_name.empty() ? nullptr : display_name.c_str());
    if (display == nullptr) ::_exit(1);
    MessageWriter introduction;
    introduce(display, introduction);
    std::string answer = introduction.bytes();
    while (send_message(socket, answer)) {
        const std::string question = next_message(socket);
        if (question.empty()) break;
        answer = answer_to(display, question);
        drop_events(display);
    }
    ::_exit(0);
}

}  // namespace gw
