// SPDX-License-Identifier: MIT
//
// A server that is asked at most once for each pattern and each font: what it has said is remembered.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fontpath/server_view.h"

namespace gw::diagnosis {

class AskedOnce : public ServerView {
  public:
    /// The most names that a server lists.
    static constexpr int ALL = 65535;

    /// The server must live as long.
    explicit AskedOnce(ServerView& server) : server_(server) {}

    bool answers() override { return server_.answers(); }
    ServerPlace place() override { return server_.place(); }
    std::optional<uid_t> user() override { return server_.user(); }
    std::vector<gid_t> groups() override { return server_.groups(); }
    ScreenResolution resolution() override { return server_.resolution(); }

    std::vector<std::string> font_path() override {
        if (!path_) path_ = server_.font_path();
        return *path_;
    }
    /// Whatever number is wanted first is the only one that is asked for.
    std::vector<std::string> names(const std::string& pattern, int most) override {
        const auto [found, is_new] = names_.try_emplace(pattern);
        if (is_new) found->second = server_.names(pattern, most);
        return found->second;
    }
    std::optional<OpenedFont> open(const std::string& name) override {
        const auto [found, is_new] = fonts_.try_emplace(name);
        if (is_new) found->second = server_.open(name);
        return found->second;
    }
    OpenedFontset open_fontset(const std::string& base_names) override {
        return server_.open_fontset(base_names);
    }
    Outcome set_font_path(const std::vector<std::string>& elements) override {
        path_.reset();
        names_.clear();
        fonts_.clear();
        return server_.set_font_path(elements);
    }

  private:
    ServerView& server_;
    std::optional<std::vector<std::string>> path_;
    std::map<std::string, std::vector<std::string>> names_;
    std::map<std::string, std::optional<OpenedFont>> fonts_;
};

}  // namespace gw::diagnosis
