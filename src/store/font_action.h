// SPDX-License-Identifier: MIT
//
// What one action of the user changes: any number of fonts, in any number of directories. Each directory has
// one change, and all of them become final together.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "store/directory_change.h"

namespace gw {

/// What becomes of a change whose directory is not there: the user's action may know how to make one.
enum class IfMissing { FAIL, MAKE };

/// Everything that belongs to one action of the user. As long as there is one, changes of a directory are one
/// change, which `commit` makes final.
class FontAction {
  public:
    FontAction();
    /// Takes back what is not committed.
    ~FontAction();
    FontAction(const FontAction&) = delete;
    FontAction& operator=(const FontAction&) = delete;

    struct Failed {
        std::string dir;  ///< ends in "/"
        Failure why;
    };
    /// What makes a directory anew which is not there when a change of it that may make one begins.
    using Maker = std::function<Outcome(const std::string& dir)>;
    void make_missing_directories(Maker maker) { maker_ = std::move(maker); }

    /// Makes all changes final, or none; a process that is killed does the same. Returns the directories that
    /// are as they were before.
    std::vector<Failed> commit();

    /// What the entries of the trash have in common that this action has made.
    [[nodiscard]] const std::string& token() const { return token_; }
    /// An entry of the trash that the commit has made: see trash.h.
    struct Kept {
        std::string dir;  ///< ends in "/"
        std::string entry;
    };
    [[nodiscard]] const std::vector<Kept>& kept() const { return kept_; }
    /// The files that the commit has brought into a directory.
    struct Came {
        std::string dir;  ///< ends in "/"
        std::vector<DirectoryChange::Came> files;
    };
    [[nodiscard]] const std::vector<Came>& came() const { return came_; }

  private:
    friend Outcome in_change(const std::string& dir, const std::function<Outcome(DirectoryChange&)>& step,
                             IfMissing if_missing);
    friend Outcome as_one_change(const std::function<Outcome()>& steps);
    [[nodiscard]] DirectoryChange* find(const Directory& dir) const;
    Result<std::unique_ptr<DirectoryChange>> begin(Directory dir);
    /// A change of the directory that is going on, or one that begins, which belongs to the caller.
    struct Begun {
        DirectoryChange* change = nullptr;
        std::unique_ptr<DirectoryChange> own;
    };
    static Result<Begun> begin_in(const std::string& path, FontAction* action);
    static Result<Begun> begin_anyhow(const std::string& path, FontAction* action, IfMissing if_missing);
    Outcome make_final();
    std::vector<Failed> commit_each();
    void note_kept(const DirectoryChange& change);

    FontAction* outer_;
    std::string token_;
    Maker maker_;
    std::vector<Kept> kept_;
    std::vector<Came> came_;
    std::vector<std::unique_ptr<DirectoryChange>> open_;
    // Directories that another process is changing: the action waits for each of them once.
    std::map<std::pair<dev_t, ino_t>, Failure> in_use_;
};

/// Runs the step as part of the user's action that is going on, or as a change of its own. What a failed step
/// has done is taken back.
Outcome in_change(const std::string& dir, const std::function<Outcome(DirectoryChange&)>& step,
                  IfMissing if_missing = IfMissing::FAIL);

/// The same for steps in several directories: if they fail, all that they have done is taken back.
Outcome as_one_change(const std::function<Outcome()>& steps);

}  // namespace gw
