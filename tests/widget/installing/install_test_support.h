// SPDX-License-Identifier: MIT
//
// For tests of where the install dialog installs: a source with two fonts. Include it last.
#pragma once

#include "app/installing/installdlg.h"

#include "widget/work_test_support.h"

namespace gw::test {

class TwoFontsTest : public WorkTest {
  protected:
    void SetUp() override {
        WorkTest::SetUp();
        source.add("alpha.pcf", face("alpha"));
        source.add("beta.pcf", face("beta"));
    }
    static Widget for_everyone() { return find(wi_install_dlg, "_destination_choice._for_everyone_toggle"); }

    FontDirectory source;
};

}  // namespace gw::test
