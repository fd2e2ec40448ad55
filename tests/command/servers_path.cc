// SPDX-License-Identifier: MIT
//
// The X server's font path is as it was when a test has ended. An element that is gone would change what the
// tests behind it find.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "fontpath/server_view.h"
#include "fontpath/xlib_server_view.h"

namespace {

class ServersPath : public testing::EmptyTestEventListener {
  public:
    ServersPath() { testing::UnitTest::GetInstance()->listeners().Append(this); }

  private:
    void OnTestStart(const testing::TestInfo&) override {
        if (const auto server = gw::connect_to_server(""); server) before_ = server->font_path();
    }
    void OnTestEnd(const testing::TestInfo&) override {
        const auto server = gw::connect_to_server("");
        if (!server || server->font_path() == before_) return;
        EXPECT_TRUE(server->set_font_path(before_));
    }

    std::vector<std::string> before_;
};

/// GoogleTest owns it.
[[maybe_unused]] const auto* const SERVERS_PATH = new ServersPath;

}  // namespace
