// SPDX-License-Identifier: MIT
//
// A disk that is slow, so that tests can act while the program is at work. Include it last.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "app/kit/toolkit.h"
#include "core/file_calls.h"

#include <X11/Intrinsic.h>
#include <Xm/AtomMgr.h>

namespace gw::test {

/// As long as this exists, `before` sees the name of every file before it is made or moved, and the disk is
/// as slow as `before` is. A write has no name, and takes a kilobyte at most.
class SlowDisk {
  public:
    explicit SlowDisk(std::function<void(const std::string& name)> before) {
        hook() = std::move(before);
        static FileCalls table = system_file_calls();
        table.write = [](int fd, const void* bytes, std::size_t count) {
            hook()("");
            return system_file_calls().write(fd, bytes, std::min(count, MOST_AT_ONCE));
        };
        table.rename = [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            hook()(new_name);
            return system_file_calls().rename(old_dir, old_name, new_dir, new_name);
        };
        table.link = [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            hook()(new_name);
            return system_file_calls().link(old_dir, old_name, new_dir, new_name);
        };
        table.unlink = [](int dir, const char* name, int flags) {
            hook()(name);
            return system_file_calls().unlink(dir, name, flags);
        };
        use_file_calls(table);
    }
    ~SlowDisk() { use_file_calls(system_file_calls()); }
    SlowDisk(const SlowDisk&) = delete;
    SlowDisk& operator=(const SlowDisk&) = delete;

  private:
    static constexpr std::size_t MOST_AT_ONCE = 1024;
    static std::function<void(const std::string&)>& hook() {
        static std::function<void(const std::string&)> of_the_disk;
        return of_the_disk;
    }
};

inline void sleep_for(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/// What the window manager sends when the user closes a window; it waits in the queue of the program.
inline void send_close(Widget dialog) {
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(XtParent(dialog));
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XSync(display, False);
}

}  // namespace gw::test
