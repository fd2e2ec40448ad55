// SPDX-License-Identifier: MIT
//
// Sets the font policy during a scope.
#pragma once

#include "core/font_policy.h"

namespace gw::test {

class UnderPolicy {
  public:
    explicit UnderPolicy(bool modern) : before_(font_policy()) { set_font_policy(FontPolicy(modern)); }
    ~UnderPolicy() { set_font_policy(before_); }
    UnderPolicy(const UnderPolicy&) = delete;
    UnderPolicy& operator=(const UnderPolicy&) = delete;

  private:
    FontPolicy before_;
};

}  // namespace gw::test
