// SPDX-License-Identifier: MIT
//
// Included by one source of a test program whose server cannot open some fonts: XCreateFontSet keeps a copy
// of the name then.
#pragma once

extern "C" const char*
__lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): it is called so
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libX11.so.6\n";
}
