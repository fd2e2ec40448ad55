// SPDX-License-Identifier: MIT
#include "support/drag_source.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "core/uri_list.h"

#include <X11/Xatom.h>

namespace gw::test {

namespace {

constexpr long MORE_THAN_THREE = 1;

}  // namespace

DragSource::DragSource(std::string bytes, std::vector<std::string> types)
    : display_(XOpenDisplay(nullptr)), bytes_(std::move(bytes)), types_(std::move(types)) {
    if (display_ == nullptr) throw std::runtime_error("no X server");
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    put_types();
    XSync(display_, False);
}

DragSource::~DragSource() {
    XCloseDisplay(display_);
}

Atom DragSource::atom(const char* name) const {
    return XInternAtom(display_, name, False);
}

void DragSource::put_types() const {
    std::vector<Atom> atoms;
    for (const std::string& type : types_) atoms.push_back(atom(type.c_str()));
    XChangeProperty(display_, window_, atom("XdndTypeList"), XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(atoms.data()),  // NOLINT(*-reinterpret-cast)
                    static_cast<int>(atoms.size()));
}

void DragSource::give_in_pieces(std::size_t size, std::size_t most_pieces) {
    piece_ = size;
    most_pieces_ = most_pieces;
}

void DragSource::send(const char* type, long second, long third, long fourth, long fifth) {
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = target_;
    event.xclient.message_type = atom(type);
    event.xclient.format = 32;
    const long numbers[] = {static_cast<long>(window_), second, third, fourth, fifth};
    std::copy(std::begin(numbers), std::end(numbers), event.xclient.data.l);
    XSendEvent(display_, target_, False, NoEventMask, &event);
    XSync(display_, False);
}

void DragSource::enter(Window target) {
    target_ = target;
    welcome_.reset();
    taken_.reset();
    long first[3] = {};
    for (std::size_t i = 0; i < types_.size() && i < std::size(first); ++i)
        first[i] = static_cast<long>(atom(types_[i].c_str()));
    const long flags = version_ << 24 | (types_.size() > std::size(first) ? MORE_THAN_THREE : 0);
    send("XdndEnter", flags, first[0], first[1], first[2]);
    XSetSelectionOwner(display_, atom("XdndSelection"), window_, CurrentTime);
    send("XdndPosition", 0, 10 << 16 | 10, CurrentTime, static_cast<long>(atom("XdndActionCopy")));
}

void DragSource::leave() {
    send("XdndLeave");
}

void DragSource::drop() {
    send("XdndDrop", 0, CurrentTime);
}

void DragSource::die() {
    XDestroyWindow(display_, window_);
    XSync(display_, False);
    window_ = 0;
}

void DragSource::answer(const XSelectionRequestEvent& request) {
    XEvent event = {};
    event.xselection.type = SelectionNotify;
    event.xselection.requestor = request.requestor;
    event.xselection.selection = request.selection;
    event.xselection.target = request.target;
    event.xselection.property = request.property;
    event.xselection.time = request.time;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes_.data());  // NOLINT(*-reinterpret-cast)
    if (piece_ == 0) {
        XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                        data, static_cast<int>(bytes_.size()));
    } else {
        requestor_ = request.requestor;
        property_ = request.property;
        given_ = pieces_ = 0;
        XSelectInput(display_, requestor_, PropertyChangeMask);
        const long size = static_cast<long>(bytes_.size());
        XChangeProperty(display_, request.requestor, request.property, atom("INCR"), 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&size), 1);  // NOLINT(*-reinterpret-cast)
    }
    XSendEvent(display_, request.requestor, False, NoEventMask, &event);
    XSync(display_, False);
}

/// After the last piece comes an empty one. A source that gives only some pieces is silent after them.
void DragSource::give_next_piece() {
    if (most_pieces_ != 0 && pieces_ == most_pieces_) return;
    const std::size_t size = std::min(piece_, bytes_.size() - given_);
    const auto* data =
        reinterpret_cast<const unsigned char*>(bytes_.data() + given_);  // NOLINT(*-reinterpret-cast)
    XChangeProperty(display_, requestor_, property_, atom("text/uri-list"), 8, PropModeReplace, data,
                    static_cast<int>(size));
    XSync(display_, False);
    given_ += size;
    ++pieces_;
    if (size == 0) requestor_ = 0;
}

void DragSource::serve() {
    while (XPending(display_) > 0) {
        XEvent event;
        XNextEvent(display_, &event);
        if (window_ == 0) continue;
        if (event.type == SelectionRequest) {
            answer(event.xselectionrequest);
        } else if (event.type == PropertyNotify && event.xproperty.state == PropertyDelete) {
            if (event.xproperty.window == requestor_ && event.xproperty.atom == property_) give_next_piece();
        } else if (event.type == ClientMessage) {
            const bool yes = (event.xclient.data.l[1] & 1) != 0;
            if (event.xclient.message_type == atom("XdndStatus")) welcome_ = yes;
            if (event.xclient.message_type == atom("XdndFinished")) taken_ = yes;
        }
    }
}

long DragSource::awareness_of(Window window) const {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display_, window, atom("XdndAware"), 0, 1, False, XA_ATOM, &type, &format, &count,
                       &left, &data);
    long version = 0;
    if (data != nullptr && format == 32 && count == 1)
        version = *reinterpret_cast<const long*>(data);  // NOLINT(*-reinterpret-cast)
    if (data != nullptr) XFree(data);
    return version;
}

std::string uri_list_of(const std::vector<std::string>& paths) {
    std::string list;
    for (const std::string& path : paths) list += uri_of_path(path) + "\r\n";
    return list;
}

}  // namespace gw::test
