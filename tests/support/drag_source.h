// SPDX-License-Identifier: MIT
//
// Another program, from which things are dragged and dropped by the XDND protocol. It has a connection of its
// own to the X server, and acts only in `serve`, so a test decides when it answers, and whether it does.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

// X headers come last, behind gtest's.
#include <X11/Xlib.h>

namespace gw::test {

class DragSource {
  public:
    /// What it offers, as "text/uri-list" unless `types` has other ones. More than three types are put on its
    /// window.
    explicit DragSource(std::string bytes, std::vector<std::string> types = {"text/uri-list"});
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    /// It gives the bytes in pieces of this size (INCR), and only so many; 0 means all.
    void give_in_pieces(std::size_t size, std::size_t most_pieces = 0);
    /// Its protocol version; 5 unless it is set.
    void set_version(long version) { version_ = version; }

    /// The pointer comes to the window, and moves there.
    void enter(Window target);
    void leave();
    void drop();
    /// Sends a message of these five numbers, whatever they mean.
    void send(const char* type, long second = 0, long third = 0, long fourth = 0, long fifth = 0);
    /// Handles what others have sent to it.
    void serve();
    /// Its window goes, as when it dies. It answers to nothing then.
    void die();

    /// What the target has said of the drag since the last `enter`; nothing when it has said nothing.
    [[nodiscard]] std::optional<bool> is_welcome() const { return welcome_; }
    /// Whether the target has taken what was dropped; nothing as long as it has not said so.
    [[nodiscard]] std::optional<bool> was_taken() const { return taken_; }

    /// The version in the window's property "XdndAware"; 0 without one.
    [[nodiscard]] long awareness_of(Window window) const;

  private:
    [[nodiscard]] Atom atom(const char* name) const;
    void put_types() const;
    void answer(const XSelectionRequestEvent& request);
    void give_next_piece();

    Display* display_;
    Window window_ = 0;
    Window target_ = 0;
    std::string bytes_;
    std::vector<std::string> types_;
    long version_ = 5;
    std::size_t piece_ = 0;
    std::size_t most_pieces_ = 0;
    // The transfer in pieces that is going on.
    Window requestor_ = 0;
    Atom property_ = 0;
    std::size_t given_ = 0;
    std::size_t pieces_ = 0;
    std::optional<bool> welcome_;
    std::optional<bool> taken_;
};

/// "file:" addresses of these paths, as careful programs write them: all bytes but letters, digits and a few
/// others are encoded, and each line ends with CR LF.
[[nodiscard]] std::string uri_list_of(const std::vector<std::string>& paths);

}  // namespace gw::test
