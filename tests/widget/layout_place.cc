// SPDX-License-Identifier: MIT
#include "widget/layout_place.h"

namespace gw::test {

const char* const LAYOUT_LOCALE = TEST_LOCALE;
const char* const LAYOUT_LANGUAGE = TEST_LANGUAGE;
const int LAYOUT_SERVER_DPI = TEST_SERVER_DPI;
const int LAYOUT_XFT_DPI = TEST_XFT_DPI;

}  // namespace gw::test
