// SPDX-License-Identifier: MIT
//
// What the parts of an answer share while it is made.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "diagnosis/asked_once.h"
#include "diagnosis/element_state.h"
#include "diagnosis/nearest.h"
#include "diagnosis/server_trace.h"

namespace gw::diagnosis {

class Answering {
  public:
    /// Asks the server for its path and looks at it.
    Answering(ServerView& asked, const Surroundings& known)
        : server(asked),
          surroundings(known),
          path(look_at_path(server, known)),
          rules(path.sources, server.resolution()) {}

    AskedOnce server;
    const Surroundings& surroundings;
    PathState path;
    ServerRules rules;

    /// Every font that could be near: of the server's path, of what is configured and of other directories.
    /// Looked for once.
    [[nodiscard]] const std::vector<Candidate>& candidates();

  private:
    void add(const FontSource& source, bool is_served);
    void add_names_of_server();
    void add_other_directories();

    std::vector<Candidate> candidates_;
    bool has_candidates_ = false;
};

/// What the server does with the name, and from where, without a sentence.
struct FontFinding {
    ServedFont font;
    Trace trace;
    std::vector<Sentence> verdict;
};
[[nodiscard]] FontFinding find_font(Answering& at, const std::string& name);

/// The first dead elements of the server's path, or of those that are only configured, with commas; "" for
/// none.
[[nodiscard]] std::string dead_elements(const std::vector<ElementReport>& path, bool are_served);

// Each part fills in its own fields of the answer.
void answer_font(Answering& at, Answer& answer);
void answer_fontset(Answering& at, Answer& answer);
void answer_file(Answering& at, Answer& answer);
void answer_directory(Answering& at, Answer& answer);
void answer_path(const Answering& at, Answer& answer);

}  // namespace gw::diagnosis
