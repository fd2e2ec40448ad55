// SPDX-License-Identifier: MIT
//
// An outline font that no machine has: a copy of a staged font under another name.
#pragma once

#include <string>

namespace gw::e2e {

struct OutlineFont {
    std::string family;

    [[nodiscard]] std::string file_name() const;
    [[nodiscard]] std::string metrics_file_name() const;
    [[nodiscard]] std::string postscript_name() const;
    /// Its entry in an index.
    [[nodiscard]] std::string index_line() const;
    /// Writes outline and metrics into the directory, which is made if needed.
    void write_to(const std::string& dir) const;
};

}  // namespace gw::e2e
