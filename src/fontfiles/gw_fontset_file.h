// SPDX-License-Identifier: MIT
//
// The fontset file "Vantor.fs" of a locale. Its fontsets are read into a list; every change of the list goes
// to a working copy, and `sync` replaces the real file by that copy.
//
// The file object owns the fontsets in the list, through a `gw::Ref` to each. A fontset that is deleted from
// the list lives as long as the file object, so that a caller may delete it, change it and append it again.
// Whoever needs it longer holds a `gw::Ref` to it.
#pragma once

#include <string_view>
#include <vector>

#include "core/gw_file.h"
#include "core/gw_list.h"
#include "core/ref.h"
#include "fontfiles/fontset_working_copy.h"
#include "fontfiles/gw_fontset.h"

class GW_FONTSET_FILE : public GW_FILE {
  public:
    static constexpr int LINE_BUFFER = 1024;

    /// Reads the file and makes the working copy. A file that is not there or cannot be read has no fontsets.
    GW_FONTSET_FILE(const char* dir, const char* name, int file_type);
    ~GW_FONTSET_FILE() override;
    GW_FONTSET_FILE(const GW_FONTSET_FILE&) = delete;
    GW_FONTSET_FILE& operator=(const GW_FONTSET_FILE&) = delete;

    [[nodiscard]] const GW_LIST<GWFontSet>& get_fontsets() const { return fontsets; }
    /// The first fontset of that name, owned by this object; null when there is none.
    [[nodiscard]] GWFontSet* get_fontset(const char* name) const;

    /// Puts `fontset`, made with `new`, at the end of the list, and its definition as it is now at the end
    /// of the working copy. This object becomes an owner of it. Later changes of the fontset reach the
    /// working copy only by deleting and appending it. A name that does not begin with "-", or a line that
    /// does not fit `LINE_BUFFER`, is written and will not be read back. Returns 1.
    int append_fontset(GWFontSet* fontset);
    /// Takes the first fontset of the same name from the list, and every definition of that name from the
    /// working copy; `fontset` itself is only compared with, and may be any object of that name. Returns 1,
    /// or 0 when the list has none.
    int delete_fontset(const GWFontSet* fontset);
    /// Replaces "Vantor.fs" in this file's directory by the working copy, atomically; owner and mode stay.
    /// Fails, and leaves the old file, when it cannot be written, or when it exists but cannot be read.
    /// When another process has changed the file since it was read, the changes are made to what that has
    /// left; the caller has taken the turn to write it (`gw::take_turn_at`).
    gw::Outcome put_in_place();
    /// The same with a number as result: 1, or 0 after the listener for failures was told.
    int sync();

  private:
    /// A change of the working copy: the name of a fontset that goes, or a definition that comes.
    struct Edit {
        std::string removed;
        std::string added;
    };

    void read_fontsets(std::string_view bytes);
    gw::Outcome follow_the_file();
    void edit(Edit change);
    [[nodiscard]] static std::string edited(const std::string& bytes, const Edit& change);

    GW_LIST<GWFontSet> fontsets;
    std::vector<gw::Ref<GWFontSet>> deleted;
    gw::FontsetWorkingCopy work;
    std::string on_disk;
    std::vector<Edit> edits;  // since `on_disk` was read or written
    gw::Outcome reading;      // why a file that exists could not be read
};
