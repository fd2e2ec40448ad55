// SPDX-License-Identifier: MIT
//
// A headless browser, controlled through its DevTools protocol over a pair of pipes, so that no port is
// opened. Mouse and keyboard events enter where the browser would get them from the system.
#pragma once

#include <optional>
#include <string>

#include "support/temp_dir.h"
#include "web/child.h"

namespace gw::web {

/// A key as a page sees it: its character ("e"), its place ("KeyE"), and its code.
struct Key {
    std::string name;
    std::string place;
    int code;
};

class Browser {
  public:
    /// Starts the browser with one empty page of 1280x900 pixels; throws std::runtime_error when that fails.
    Browser();
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    void open(const std::string& address);
    /// Runs JavaScript statements and returns the value of the last one, a string of printable ASCII; empty
    /// when they throw.
    [[nodiscard]] std::string evaluate(const std::string& statements);
    /// Clicks a place of the page.
    void click(double x, double y);
    void press(const Key& key);
    void release(const Key& key);
    void type(const Key& key) {
        press(key);
        release(key);
    }
    /// Saves a picture of the page among the results of the run.
    void picture(const std::string& name);

  private:
    struct Pipe {
        Pipe();
        ~Pipe();
        Pipe(const Pipe&) = delete;
        Pipe& operator=(const Pipe&) = delete;
        int read_end = -1;
        int write_end = -1;
    };

    /// Sends a command with its parameters (a JSON object) and returns the answer (JSON); throws when none
    /// comes.
    std::string call(const std::string& method, const std::string& parameters);
    void key(const std::string& type, const Key& key);
    void mouse(const std::string& type, double x, double y, int buttons);
    [[nodiscard]] std::string next_message();

    test::TempDir profile_;
    Pipe commands_;
    Pipe answers_;
    std::optional<Child> process_;
    std::string session_;
    std::string received_;
    int last_id_ = 0;
};

}  // namespace gw::web
