// SPDX-License-Identifier: MIT
#include "widget/layout/layout_suite.h"

namespace gw::test {

const LayoutSuite SUITE = {TEST_LOCALE,  TEST_LANGUAGE,       TEST_SERVER_DPI,
                           TEST_XFT_DPI, TEST_MODERN_WINDOWS, TEST_FONT};

}  // namespace gw::test
