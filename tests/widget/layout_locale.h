// SPDX-License-Identifier: MIT
//
// The locale that the layout is looked at in: each has an executable of its own.
#pragma once

namespace gw::test {

extern const char* const LAYOUT_LOCALE;
/// The language of its texts as data/locales.txt calls it, or "C".
extern const char* const LAYOUT_LANGUAGE;

}  // namespace gw::test
