// SPDX-License-Identifier: MIT
//
// The machine that a command works on: its configured font path, what is installed, its X server.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/gw_list.h"
#include "fontpath/gw_font_path.h"
#include "fontpath/server_view.h"
#include "fontpath/session_path.h"
#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"

#include "glyphward-fonts/report.h"

namespace gw::fonts {

/// Prepares the engine: what the shipped windows do is done here too. The listener for failures gets what no
/// caller is told. Called once.
void prepare_engine();

/// What is installed: the fonts of the configured font path under the names of the windows, and the aliases.
/// Needs no X server. What cannot be listed is a trouble of the report.
class Host {
  public:
    /// The fonts of the directory `also` are among them, on the font path or not.
    explicit Host(Report& report, const std::string& also = "");
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    [[nodiscard]] GWHRNList& fonts() { return fonts_; }
    [[nodiscard]] GW_SORTED_LIST<GWAlias>& aliases() { return aliases_; }
    [[nodiscard]] GW_LIST<GWConflict>& conflicts() { return conflicts_; }

  private:
    void list_also(const std::string& directory);

    GWHRNList fonts_{0};
    GW_SORTED_LIST<GWAlias> aliases_{0};
    GW_LIST<GWConflict> conflicts_;
};

/// The font path of the installation, read when it is first asked for.
[[nodiscard]] GWFontPath& font_path_of_host();

/// The elements of a configured font path, as they are written.
[[nodiscard]] std::vector<std::string> elements_of(GWFontPath::TYPE which);

/// Replaces a configured font path as a whole.
Outcome store_elements(GWFontPath::TYPE which, const std::vector<std::string>& elements);

/// Connects to an X server; "" is what DISPLAY names. Null, with a trouble, when none answers.
[[nodiscard]] std::unique_ptr<ServerView> server_or_trouble(const std::string& display, Report& report);

/// Gives the server this font path, or as much of it as the server takes: one element that it cannot use
/// would make it refuse all. What it refuses is a trouble. Returns what it has now, and what it has refused.
session::Outcome give_to_server(ServerView& server, const session::Elements& wanted, Report& report);

/// The running server reads its directories again; where a directory is to be on its path, it is put at the
/// end first. Without a display nothing is done. What the server refuses is a trouble.
void tell_server(const std::string& directory, Report& report);

/// What the listener for failures has got since the last call is trouble.
void report_heard(Report& report);

}  // namespace gw::fonts
