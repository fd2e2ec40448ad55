// SPDX-License-Identifier: MIT
//
// A change of a font directory: files that come, files that go, lines of the index. It is made completely or
// not at all, also when the process is killed in the middle: the next change, or the next `settle`, takes
// back what was begun.
//
// New files are made in our own directory (see own_directory.h) and get their names font by font. Those of a
// longer action keep their names in our directory too, until they have been written to the disk with others:
// what has two names and no record goes when the change is taken back. What goes,
// and the index, follow when the change is committed: first the index, in one write, then the files. What
// went can be kept in the trash (see trash.h).
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "core/file_writer.h"
#include "fontfiles/index_edit.h"
#include "fontfiles/index_text.h"
#include "store/journal.h"
#include "store/line_register.h"
#include "store/own_directory.h"
#include "store/trash_bin.h"
#include "store/trash_manifest.h"

namespace gw {

class PlaceBelow;

class DirectoryChange {
  public:
    /// A new file for the directory, without its name so far.
    class StagedFile : public FileWriter {
      public:
        [[nodiscard]] const std::string& name() const { return name_; }

      private:
        friend class DirectoryChange;
        StagedFile(Descriptor fd, std::string path, std::string name, std::string number)
            : FileWriter(std::move(fd), std::move(path)),
              name_(std::move(name)),
              number_(std::move(number)) {}
        std::string name_;    // in the font directory
        std::string number_;  // in our own
    };

    /// Opens the directory, takes its lock, and takes back a change that did not come to its end.
    static Result<std::unique_ptr<DirectoryChange>> begin(const std::string& dir);
    /// The same, with a directory that is open; a lock that another process has is waited for, or not.
    static Result<std::unique_ptr<DirectoryChange>> begin(Directory dir, bool waits = true);
    /// Takes back what is not committed.
    ~DirectoryChange();
    DirectoryChange(const DirectoryChange&) = delete;
    DirectoryChange& operator=(const DirectoryChange&) = delete;

    [[nodiscard]] const Directory& dir() const { return dir_; }

    /// Makes the subdirectory for metrics, if it is missing.
    Outcome make_metrics_dir();
    /// Begins a file that shall be called NAME. A file of that name that may not be written, or a directory,
    /// is not replaced.
    Result<StagedFile> stage(const std::string& name);
    /// Whether the finished file will replace one with other bytes.
    [[nodiscard]] bool changes_a_file(const StagedFile& file) const;
    /// Gives the finished file its name.
    Outcome put(StagedFile& file);
    /// From now on many new files are written to the disk at once, in the end when the change is committed,
    /// where the file system allows it.
    void gather_arrivals();
    /// The file NAME goes when the change is committed; one that is missing counts as gone. With `may_stay`
    /// the change succeeds although the file cannot be removed, and the listener for failures is told. False
    /// for a name that a journal cannot have; nothing is done then.
    bool take_out(const std::string& name, bool may_stay);
    /// Something comes back from this entry of the trash: it does not give way, and goes when nothing is
    /// left.
    void use_entry(const std::string& name) { entries_in_use_.push_back(name); }
    /// A file of an entry gets its name back; a file of that name is taken out.
    Outcome bring_back(const Directory& entry, const std::string& entry_name, const trash::KeptFile& file);
    /// "fonts.scale" shall have this line (newline included), wherever it follows the index.
    void enter_scalable(const std::string& line) { scalable_lines_.push_back(line); }
    /// Whether what is taken out goes to the trash; see trash_policy.h.
    void keep_in_trash(bool keeps) { keeps_ = keeps; }
    [[nodiscard]] bool keeps_in_trash() const { return keeps_; }
    /// The user's action that this change belongs to.
    void set_action(const std::string& token) { action_ = token; }
    /// The entry of the trash that the committed change has made; "" for none.
    [[nodiscard]] const std::string& kept_entry() const { return kept_entry_; }
    /// A file that the change has brought.
    struct Came {
        FileIdentity stamp;
        std::string name;
    };
    /// The files that the committed change has brought, where what goes is kept in the trash; not the
    /// indexes.
    [[nodiscard]] const std::vector<Came>& came() const { return came_; }
    /// The trash of the directory, which this must outlive; nothing where there is none.
    [[nodiscard]] std::optional<TrashBin> trash() const;
    /// Whether the trash could make room by giving something up.
    bool give_way();

    /// Runs when the change is final; of several steps with the same key only the first.
    void afterwards(const std::string& key, std::function<void()> step);

    /// The directory gets an index, if it has none: with the committed change, or now where the policy wants
    /// it so (see `FontPolicy::makes_index_with_first_font`). Fails for an index that may not be written.
    Outcome make_index();
    /// The names of the fonts for which the index, as it will be, has this file.
    [[nodiscard]] std::vector<std::string> font_names(const std::string& file_name) const;
    /// The index as it will be; put together anew for each call.
    [[nodiscard]] std::string index() const { return edit_->text(); }
    /// Appends an entry line, newline included.
    void enter(const std::string& line);
    /// Removes the entries of the file, at most the first `most`; returns their number.
    int strike_out(const std::string& file_name, int most);
    /// The texts of "fonts.dir" and "fonts.scale"; none for a file that is not there.
    struct Indexes {
        std::optional<std::string> fonts_dir;
        std::optional<std::string> fonts_scale;
        bool operator==(const Indexes&) const = default;
    };
    /// Both as they are on the disk.
    [[nodiscard]] Result<Indexes> indexes() const;
    /// When the change is committed, the indexes get these texts, and what was entered or struck out does not
    /// matter; modes stay. The commit fails with EAGAIN when another program writes "fonts.dir" meanwhile.
    /// "fonts.scale" is left alone where the program keeps none (see `FontPolicy::keeps_scalable_index`).
    void replace_indexes(Indexes texts);
    /// Whether the directory will have a file of this name.
    [[nodiscard]] bool will_have(const std::string& name) const;

    /// What a font's part of the change can be taken back to: how much there was of everything.
    struct Mark {
        std::size_t records = 0;
        unsigned next_number = 0;
        std::size_t edits = 0;
        std::size_t leaving = 0;
        std::size_t staying = 0;
        std::size_t afterwards = 0;
        std::size_t scalable_lines = 0;
        bool makes_index = false;
    };
    [[nodiscard]] Mark mark() const;
    void take_back_to(const Mark& mark);
    void take_back_all();

    /// Makes the change final. After a failure everything is as it was before `begin`.
    Outcome commit();

    // The steps of `commit`, for changes that are final together (see joint_change.h).
    Outcome commit_index();
    Outcome commit_files();
    Outcome commit_end();
    /// Whether anything was begun.
    [[nodiscard]] bool has_journal() const { return journal_.is_open(); }
    /// Says in the journal that this change is final when that of the leader is.
    Outcome depend_on(const DirectoryChange& leader, const std::string& token);
    /// Makes this change and those that depend on it final.
    Outcome lead(const std::vector<DirectoryChange*>& others, const std::string& token);
    /// Ends a change that is final; false when its journal could not be removed.
    bool end_as_final();
    /// Removes the sign that the changes which depended on this one are final.
    void end_leading(const std::string& token) const;
    /// Takes back what is not committed, on the disk and of the edits that are planned.
    void abandon();
    /// Takes back what is on the disk only, so that it can be committed again.
    void undo_on_disk();
    /// Whether files come with this change.
    [[nodiscard]] bool brings_files() const;

  private:
    /// What shall go when the change is committed, unless another file gets its name.
    struct Leaving {
        std::string name;
        bool may_stay;
        bool stays = false;
    };
    /// What follows then.
    struct Step {
        std::string key;
        std::function<void()> run;
    };

    /// A new file that may not be on the disk yet, and not its record: it keeps the number in our directory.
    struct Arrival {
        Descriptor file;
        std::string name;
        unsigned number;
    };

    DirectoryChange(Directory dir, std::unique_ptr<OwnDirectory> own);
    /// The same failure, of a file that the user knows.
    static Failure about(std::string path, Failure failure);
    Result<std::string> look_at_index();
    Outcome load_index();
    Outcome make_index_at_once();
    void collect_edits();
    [[nodiscard]] bool only_deletes() const;
    [[nodiscard]] Outcome may_write_index() const;
    [[nodiscard]] Outcome may_be_replaced(const std::string& name) const;
    Outcome note(const std::vector<journal::Record>& records);
    Outcome append(const std::vector<journal::Record>& records);
    Outcome append_once(const std::vector<journal::Record>& records, bool goes_to_disk);
    /// Tries the work again as long as there is no room for it and the trash gives way.
    template <class Work>
    auto with_room(const Work& work) -> decltype(work()) {
        auto result = work();
        while (!result && result.failure().is_lack_of_room() && give_way()) result = work();
        return result;
    }
    Outcome move_in(const Directory& from, const std::string& from_name, const std::string& name,
                    const journal::Record& record, const std::function<bool()>& still);
    [[nodiscard]] trash::Manifest manifest() const;
    Outcome write_manifest(const trash::Manifest& manifest);
    void prepare_trash();
    void drop_staged(unsigned first);
    void take_back_records(std::size_t first);
    [[nodiscard]] bool has_arrival(const std::string& name) const;
    void stay_where_something_comes(const std::string& name);
    Outcome put_at_once(StagedFile& file);
    Outcome link_in(StagedFile& file, const PlaceBelow& place);
    Outcome write_arrivals_to_disk();
    Outcome settle_arrivals();
    void forget_leaving(std::size_t leaving, std::size_t staying);
    Outcome write_index();
    Outcome put_if(const StagedFile& file, const std::function<bool()>& still);
    [[nodiscard]] Result<std::optional<std::string>> next_scalable_index() const;
    Result<StagedFile> stage_scalable_index(const struct stat* old, const std::string& text);
    [[nodiscard]] Outcome may_take_place_of_scalable_index() const;
    Outcome keep_scalable_index();
    Outcome write_indexes();
    void shorten_scalable_index() const;
    Outcome note_index(const journal::Record& record);
    void load_our_lines();
    void put_lost_lines_back();
    Result<journal::Register> prepare_register();
    Outcome put_register_in_place();
    Outcome prepare_index();
    Outcome copy_old_index();
    Outcome set_index_aside();
    Outcome prepare_overwriting();
    [[nodiscard]] bool index_is_unchanged() const;
    Outcome put_index_in_place();
    Outcome merge_index(std::size_t records);
    Outcome edit_again();
    [[nodiscard]] Outcome set_aside(const std::string& name, unsigned number) const;
    [[nodiscard]] Outcome remove(const std::string& name) const;
    Outcome move_out();
    Outcome leave_lost_lines_out();
    Outcome commit_for_good();
    Outcome cut_journal(off_t size);
    void finish();
    Outcome forget_journal();
    void end_journal();
    void drop_journal();

    Directory dir_;
    std::unique_ptr<OwnDirectory> own_;  // null where there was no room for one: then files can only go
    Descriptor journal_;
    std::vector<journal::Record> records_;
    std::vector<off_t> offsets_;  // of the records in the journal
    std::set<unsigned> staged_;   // the numbers that files have in our directory
    bool gathers_ = false;
    std::vector<Arrival> arrivals_;
    off_t bytes_of_arrivals_ = 0;
    std::vector<Leaving> leaving_;
    std::unordered_multimap<std::string, std::size_t> places_of_leaving_;
    std::vector<std::size_t> staying_;  // in the order in which they were found to stay
    std::vector<Step> afterwards_;
    LineRegister our_lines_;
    Mark beginning_;  // with what was put back
    std::unique_ptr<IndexEdit> edit_ = std::make_unique<IndexEdit>();
    // The index when it is written: as it was and as it will be, what becomes of each changed line, and how
    // many of each there were.
    std::optional<Indexes> whole_;
    std::string before_;
    std::string text_;
    LineNumbers differences_;
    LineNumbers lines_;
    struct stat index_info_ = {};
    struct stat content_info_ = {};  // of what it points to, if it is a link
    bool has_index_ = false;
    bool makes_index_ = false;       // where there is none
    bool overwrites_index_ = false;  // it is a link, has other names, or belongs to another user
    unsigned next_number_ = 0;
    // For the trash, and from it.
    bool keeps_;
    std::string action_;
    std::string kept_entry_;
    std::vector<Came> came_;
    std::vector<std::string> entries_in_use_;
    std::vector<std::string> scalable_lines_;
    LineNumbers lost_scalable_lines_;
    std::optional<Failure> broken_;  // why nothing can be added: the journal says more than was done
};

/// Takes back a change of the directory that did not come to its end, if there is one and this user may.
/// Otherwise says so (`Reason::UNFINISHED`). Somebody else's change that is going on is left alone.
Outcome settle(const std::string& dir);

}  // namespace gw
