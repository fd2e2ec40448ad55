// SPDX-License-Identifier: MIT
//
// The X server of the windows, for a diagnosis. What was done may be undone much later, and refers to the
// server until then; a connection, and the process that has it, is there only during a `ServerUse`.
#pragma once

#include <string>

#include "fontpath/server_view.h"

namespace gw {

class ServerOnDemand final : public ServerView {
  public:
    [[nodiscard]] bool answers() override;
    [[nodiscard]] ServerPlace place() override;
    [[nodiscard]] std::optional<uid_t> user() override;
    [[nodiscard]] std::vector<gid_t> groups() override;
    [[nodiscard]] ScreenResolution resolution() override;
    [[nodiscard]] std::vector<std::string> font_path() override;
    [[nodiscard]] std::vector<std::string> names(const std::string& pattern, int most) override;
    [[nodiscard]] std::optional<OpenedFont> open(const std::string& name) override;
    [[nodiscard]] OpenedFontset open_fontset(const std::string& base_names) override;
    Outcome set_font_path(const std::vector<std::string>& elements) override;
};

}  // namespace gw
