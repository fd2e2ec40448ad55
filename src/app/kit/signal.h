// SPDX-License-Identifier: MIT
//
// How a part of the program tells those who stand above it, of which it knows nothing, what has happened.
#pragma once

#include <algorithm>
#include <vector>

namespace gw {

/// Calls every connected function, in the order in which they were connected.
template <class... Args>
class Signal {
  public:
    using Listener = void (*)(Args...);

    /// A function that is connected already is still called once only.
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
