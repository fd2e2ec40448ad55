// SPDX-License-Identifier: MIT
//
// What windows show and do beyond earlier releases. By default every point below is off. The resource
// `gw_modern_windows` switches all points on together. Each place in the code asks for one point.
#pragma once

namespace gw {

class WindowPolicy {
  public:
    constexpr explicit WindowPolicy(bool modern = false) : modern_(modern) {}

    /// Failures are shown in a window, with their reasons, and not only on standard error.
    [[nodiscard]] constexpr bool shows_reasons() const { return modern_; }
    /// A font path from which all directories were deleted is stored empty. Otherwise it is not stored, and
    /// the window shows something else than the file.
    [[nodiscard]] constexpr bool stores_an_empty_path() const { return modern_; }
    /// The package that a font belongs to is shown, and what the package manager does when it is missing.
    [[nodiscard]] constexpr bool shows_packages() const { return modern_; }

  private:
    bool modern_;
};

/// The policy of the whole program.
[[nodiscard]] WindowPolicy window_policy();
/// Called once at start-up, before any window is made.
void set_window_policy(WindowPolicy policy);

}  // namespace gw
