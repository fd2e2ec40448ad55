// SPDX-License-Identifier: MIT
#include "widget/layout_locale.h"

namespace gw::test {

const char* const LAYOUT_LOCALE = TEST_LOCALE;
const char* const LAYOUT_LANGUAGE = TEST_LANGUAGE;

}  // namespace gw::test
