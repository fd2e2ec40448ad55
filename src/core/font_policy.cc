// SPDX-License-Identifier: MIT
#include "core/font_policy.h"

namespace gw {

namespace {

FontPolicy& program_policy() {
    static FontPolicy policy;
    return policy;
}

}  // namespace

const FontPolicy& font_policy() {
    return program_policy();
}

void set_font_policy(FontPolicy policy) {
    program_policy() = policy;
}

}  // namespace gw
