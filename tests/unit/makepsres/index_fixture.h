// SPDX-License-Identifier: MIT
//
// A directory of font files that contain little more than a name, and a way to run the tool on it.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "makepsres/make_index.h"
#include "support/strict_upr.h"
#include "support/temp_dir.h"

namespace gw::test {

inline std::string outline(const std::string& name) {
    return "%!PS-AdobeFont-1.0: " + name + "\n/FontName /" + name + " def\ncurrentfile eexec\n";
}
inline std::string metrics(const std::string& name) {
    return "StartFontMetrics 2.0\nFontName " + name + "\nEndFontMetrics\n";
}

class IndexTest : public testing::Test {
  protected:
    /// Runs the tool with the output file `upr()` and these arguments; returns its status.
    int run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-o", upr()});
        std::ostringstream out;
        std::ostringstream err;
        const int status = psres::run(arguments, out, err);
        said = err.str();
        EXPECT_EQ(out.str(), "");
        return status;
    }
    [[nodiscard]] std::string upr() const { return results.file("out.upr"); }
    [[nodiscard]] std::string written() const { return results.read("out.upr"); }
    [[nodiscard]] StrictUpr read() const { return StrictUpr(written()); }
    /// The directory without the slash at its end, as a directory line has it.
    [[nodiscard]] std::string root() const { return fonts.path().substr(0, fonts.path().size() - 1); }
    /// The line that the tool prints about a file below the directory.
    [[nodiscard]] std::string line(const std::string& file, const std::string& reason) const {
        return "makepsres: " + fonts.file(file) + ": " + reason + '\n';
    }

    TempDir fonts;
    TempDir results;
    std::string said;
};

}  // namespace gw::test
