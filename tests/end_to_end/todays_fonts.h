// SPDX-License-Identifier: MIT
//
// Fonts as Debian ships them, a ".pfb" and a ".pcf.gz", and what a user does with them. The tests of the
// staged installation and those of the installed package share this. Include it last.
#pragma once

#include <memory>
#include <string>

#include "end_to_end/program_test.h"

#include "end_to_end/install_dialog.h"

namespace gw::e2e {

class TodaysFontsTest : public ProgramTest {
  protected:
    static constexpr const char* OUTLINE_FILE = "aardwolf.pfb";
    // Their lines come before those of all other fonts; the outline's is first.
    static constexpr int OUTLINE_LINE = 0;
    static constexpr int BITMAP_LINE = 1;

    /// Writes the fonts into `source`; the files are called `OUTLINE_FILE` and `bitmap_file`.
    void write_fonts();
    void open_on_source();
    /// Selects both in the dialog, checks the outline's sample, and installs both, byte for byte.
    void install_both();
    bool main_sample_of_line(int line);
    /// Deletes both from the main window's list and checks that nothing of them is left.
    void delete_both();
    /// The bytes of a file in the directory where fonts go.
    [[nodiscard]] std::string installed(const std::string& name) const;
    [[nodiscard]] bool arrives(const std::string& name) const;
    /// Whether the server has both fonts.
    [[nodiscard]] bool server_has_outline() const;
    [[nodiscard]] bool server_has_bitmap() const;

    gw::test::TempDir source;
    std::string bitmap_file;
    std::unique_ptr<InstallDialog> dialog;

  private:
    void delete_line(int line);
};

}  // namespace gw::e2e
