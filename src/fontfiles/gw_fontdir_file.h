// SPDX-License-Identifier: MIT
//
// The index "fonts.dir" of a font directory: line 1 is the number of entries, every further line a file name,
// one blank and a font name (format: fonts.dir, as read by the X server's font library). The X server reads
// it too, so it is edited with care: the number on line 1 is always right, and a rewrite is atomic.
#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "core/gw_file.h"
#include "core/gw_string_list.h"
#include "fontfiles/index_text.h"

class GW_FONTDIR_FILE : public GW_FILE {
  public:
    using Entry = gw::IndexEntry;
    /// Lines are read in pieces of at most this many characters; an entry line with its newline must be
    /// shorter to be read back whole.
    static constexpr int LINE_BUFFER = gw::INDEX_LINE_BUFFER;

    GW_FONTDIR_FILE(const char* dir, int file_type);

    /// The index as it was when it was read, in one piece.
    struct Contents {
        explicit Contents(gw::Result<std::string> bytes);
        Contents(const Contents&) = delete;
        Contents& operator=(const Contents&) = delete;

        bool is_there;
        std::string text;
        /// Every entry in file order; parts of the text.
        std::vector<gw::IndexEntryView> entries;
    };
    [[nodiscard]] std::shared_ptr<const Contents> contents();

    /// While a reading exists, `contents` and what stands on it answer from one look at the file.
    class Reading {
      public:
        explicit Reading(GW_FONTDIR_FILE& index);
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

      private:
        GW_FONTDIR_FILE& index;
        std::shared_ptr<const Contents> before;
    };

    /// While a batch exists, the lines that are appended to `index` (through that same object) are collected,
    /// and nobody else sees them. They are then written together, in order, so that a thousand lines cost one
    /// rewrite of the file.
    class Batch {
      public:
        explicit Batch(GW_FONTDIR_FILE& index);
        /// Writes the lines that are not written yet.
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;
        /// Writes the lines collected so far. After a failure they are dropped.
        gw::Outcome write();

      private:
        GW_FONTDIR_FILE& index;
    };

    /// Makes an index without entries ("0\n") unless there is an index already.
    gw::Outcome make();
    /// `make`, ignoring failures; returns 1.
    int create();
    /// The number on line 1 (0 when it is not a number), or -1 when the file cannot be opened. The file is
    /// closed again.
    int get_font_count();

    /// Every entry in file order, read in one pass; false when the file cannot be opened.
    bool get_entries(std::vector<Entry>& out);
    /// Appends the file name (font name) of every entry, in file order; 0 when the file cannot be opened,
    /// else 1. The strings belong to `out`'s owner.
    int get_inst_font_file_names(GW_STRING_LIST& out);
    int get_inst_font_names(GW_STRING_LIST& out);
    /// The font name of the first entry of that file (the file name of the first entry of that font),
    /// case-sensitive; null when there is none or the file cannot be opened.
    std::unique_ptr<GW_STRING> get_font_name(const char* file_name);
    std::unique_ptr<GW_STRING> get_file_name(const char* font_name);

    /// Splits an entry line at the first blank; the font name keeps further blanks and loses its newline.
    static void split_line(const char* line, std::string& file_name, std::string& font_name);

    /// Appends the entry `line` (its newline included) and raises the count. During a batch, succeeds when
    /// the line is in the batch.
    gw::Outcome enter(const char* line);
    gw::Outcome enter(const GW_STRING_LIST& lines);
    /// Undoes `enter(line)`: removes the last entry with this text and lowers the count.
    gw::Outcome withdraw(const char* line);
    /// Removes the entries of that file, but at most the first `most`, in one rewrite, and lowers the count.
    /// Returns their number.
    gw::Result<int> strike_out(const char* file_name, int most = std::numeric_limits<int>::max());

    // The same with numbers as results: 1 when something was done, else 0.

    int append_line(const char* line);
    int append_line(const GW_STRING_LIST* lines);
    int take_back_line(const char* line);
    int delete_font_file_line(const char* file_name);
    int delete_font_file_lines(const char* file_name);
    /// Removes the `n`-th entry line (1 is the first behind the count line), without touching the count.
    /// Returns 0 when the file cannot be changed or has no such line, else 1. Kept: removing a line by its
    /// number leaves the count.
    int delete_line(int n);
    /// Adds `delta` to the number on line 1; returns the new count, or -1 when the file cannot be changed.
    int adjust_font_count(int delta);

  private:
    struct Lines {
        std::string text;
        int count;
    };
    gw::Outcome append(const Lines& lines);

    std::optional<Lines> gathered;                   // while there is a batch
    std::shared_ptr<const Contents> as_it_was_read;  // while there is a reading
};
