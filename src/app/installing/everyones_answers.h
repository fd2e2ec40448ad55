// SPDX-License-Identifier: MIT
//
// Which parts of the answer of the program that installs for everyone are about which entries of the source.
// It names fonts as it sees them, among those that it gets and without the rest of our list; so entries that
// read alike are told apart by the files that were sent.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/ref.h"
#include "model/gw_hrn_list.h"
#include "platform/everyone_request.h"

namespace gw {

/// An entry, and the names under which its files are sent; not those of metrics, which two fonts may share.
struct SentEntry {
    Ref<GWHRNElement> entry;
    std::vector<std::string> names;
};

/// To be asked when the files are sent: later they may have other paths.
[[nodiscard]] std::vector<SentEntry> sent_entries(const std::vector<Ref<GWHRNElement>>& entries,
                                                  const std::vector<SentFile>& sent);

class EveryonesAnswers {
  public:
    using Font = EveryoneAnswer::Font;

    EveryonesAnswers(EveryoneAnswer answer, const std::vector<SentEntry>& sent);
    EveryonesAnswers(const EveryonesAnswers&) = delete;
    EveryonesAnswers& operator=(const EveryonesAnswers&) = delete;

    [[nodiscard]] const EveryoneAnswer& all() const { return answer_; }
    /// What it says about the fonts of the entry, which lists show by this name. Where it names no files, as
    /// that of an older program, what it says about fonts that read like it.
    [[nodiscard]] std::vector<const Font*> about(const GWHRNElement* entry, const std::string& name) const;
    /// What the user calls the font, where the answer has its files; otherwise what the answer calls it.
    [[nodiscard]] std::string name_of(const Font& font) const;

  private:
    EveryoneAnswer answer_;
    std::map<const GWHRNElement*, std::vector<const Font*>> by_entry_;
    std::map<const Font*, std::string> names_;
    std::vector<const Font*> without_files_;
};

}  // namespace gw
