// SPDX-License-Identifier: MIT
#include "x_server.h"

#include <sys/socket.h>

#include <cstdio>
#include <cstdlib>

// The error handler's constants are macros with common names.
#include <X11/Xlib.h>

namespace gw::session {

namespace {

bool refused = false;

int note_refusal(Display*, XErrorEvent*) {
    refused = true;
    return 0;
}

// Exit handlers would try to talk to the lost display.
int connection_lost(Display*) {
    std::fprintf(stderr, "glyphward-session: the connection to the X server is lost\n");
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

void XServer::Closer::operator()(_XDisplay* display) const {
    XCloseDisplay(display);
}

XServer::XServer() {
    XSetIOErrorHandler(connection_lost);
    XSetErrorHandler(note_refusal);
    display_.reset(XOpenDisplay(nullptr));
}

PathHost XServer::host() const {
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    // The socket functions take a pointer to this type for every kind of address.
    auto* address = reinterpret_cast<sockaddr*>(&peer);
    const bool is_local =
        ::getpeername(ConnectionNumber(display_.get()), address, &size) == 0 && peer.ss_family == AF_UNIX;
    return is_local ? PathHost::THIS : PathHost::ANOTHER;
}

Elements XServer::font_path() const {
    int count = 0;
    char** path = XGetFontPath(display_.get(), &count);
    Elements elements(path, path + count);
    if (path != nullptr) XFreeFontPath(path);
    return elements;
}

bool XServer::set_font_path(const Elements& path) const {
    if (path.empty()) return false;
    Elements copies = path;
    std::vector<char*> texts;
    for (std::string& element : copies) texts.push_back(element.data());
    refused = false;
    // Xlib does not send a path that is too long for one request.
    const bool sent = XSetFontPath(display_.get(), texts.data(), static_cast<int>(texts.size())) != 0;
    XSync(display_.get(), False);
    return sent && !refused;
}

std::string display_in_words() {
    const std::string name = XDisplayName(nullptr);
    return name.empty() ? ": DISPLAY is not set" : ' ' + name;
}

}  // namespace gw::session
