// SPDX-License-Identifier: MIT
//
// A signal: a part of the program tells the parts above it, which it does not know, what has happened.
#pragma once

#include <algorithm>
#include <vector>

namespace gw {

/// Calls every connected function, in the order in which they were connected.
template <class... Args>
class Signal {
  public:
    using Listener = void (*)(Args...);

    /// Connecting a function twice changes nothing: it is called once.
    void connect(Listener listener) {
        if (std::find(listeners_.begin(), listeners_.end(), listener) == listeners_.end())
            listeners_.push_back(listener);
    }
    void emit(Args... args) const {
        for (Listener listener : listeners_) listener(args...);
    }

  private:
    std::vector<Listener> listeners_;
};

}  // namespace gw
