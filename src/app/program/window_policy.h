// SPDX-License-Identifier: MIT
//
// What the windows do beyond what they have always done. By default nothing. The resource `gw_modern_windows`
// switches everything below on together; each place that differs asks for its own point.
#pragma once

namespace gw {

class WindowPolicy {
  public:
    constexpr explicit WindowPolicy(bool modern = false) : modern_(modern) {}

    /// What was not done is shown in a window, with its reason, and not only said on standard error.
    [[nodiscard]] constexpr bool shows_reasons() const { return modern_; }

  private:
    bool modern_;
};

/// The policy of the whole program.
[[nodiscard]] WindowPolicy window_policy();
/// Start-up says it once, before any window is made.
void set_window_policy(WindowPolicy policy);

}  // namespace gw
