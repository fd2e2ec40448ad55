// SPDX-License-Identifier: MIT
#include "diagnosis/own_paths.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "core/file_calls.h"
#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/font_path_files.h"
#include "fontpath/path_element.h"
#include "fontpath/vtfontpath_file.h"
#include "platform/host_paths.h"
#include "store/file_turn.h"

namespace gw::diagnosis {

namespace {

using Texts = std::vector<std::string>;

Texts texts_of(GWFontPath& paths, GWFontPath::TYPE list) {
    unsigned int count = 0;
    Texts texts;
    for (const GW_STRING* element : *paths.get_fpe_list(list, count)) texts.emplace_back(element->get_str());
    return texts;
}

/// The list at the beginning of which, and the one at whose end, an element of this user's comes.
std::array<GWFontPath::TYPE, 2> own_lists(GWFontPath& paths) {
    if (!runs_as_superuser()) return {GWFontPath::USER_PREPEND_FP, GWFontPath::USER_APPEND_FP};
    const bool has_host = !texts_of(paths, GWFontPath::HOST_FP).empty();
    const GWFontPath::TYPE in_force = has_host ? GWFontPath::HOST_FP : GWFontPath::INSTALLATION_FP;
    return {in_force, in_force};
}

std::vector<ConfiguredPlace> places_of(GWFontPath& paths, const std::string& element) {
    const ElementIdentity identity = identity_of_element(element);
    std::vector<ConfiguredPlace> places;
    const auto [first, last] = own_lists(paths);
    const auto look_in = [&](GWFontPath::TYPE list) {
        int position = 0;
        for (std::string& text : texts_of(paths, list)) {
            ++position;
            if (identity_of_element(text) == identity) places.push_back({list, position, std::move(text)});
        }
    };
    look_in(first);
    if (last != first) look_in(last);
    return places;
}

std::optional<std::string> bytes_of(const std::string& path) {
    Result<std::string> bytes = read_file(path);
    return bytes ? std::optional(std::move(*bytes)) : std::nullopt;
}

/// The text that the user's lists have in their file.
std::optional<std::string> text_of(GWFontPath& paths) {
    unsigned int count = 0;
    return vtfontpath_text(*paths.get_fpe_list(GWFontPath::USER_APPEND_FP, count),
                           *paths.get_fpe_list(GWFontPath::USER_PREPEND_FP, count));
}

/// The paths of this user, and what is in their file, for a change of them.
class Watched {
  public:
    Watched() {
        const char* home = std::getenv("HOME");
        if (!runs_as_superuser() && home != nullptr) file_.path = std::string(home) + USER_FONT_PATH_FILE;
        file_.before = bytes_of(file_.path);
        paths_ = std::make_unique<GWFontPath>(INSTALLATION_ROOT);
        if (bytes_of(file_.path) != file_.before) file_.path.clear();
        appended_ = texts_of(*paths_, GWFontPath::USER_APPEND_FP);
        prepended_ = texts_of(*paths_, GWFontPath::USER_PREPEND_FP);
    }
    [[nodiscard]] GWFontPath& paths() { return *paths_; }

    /// The file after the change, which `undo` makes to the lists in the other direction. Where they are then
    /// not what they were, somebody else has changed them, too.
    [[nodiscard]] PathFile file(const std::function<void(Texts& appended, Texts& prepended)>& undo) {
        if (file_.path.empty()) return {};
        Texts appended = texts_of(*paths_, GWFontPath::USER_APPEND_FP);
        Texts prepended = texts_of(*paths_, GWFontPath::USER_PREPEND_FP);
        undo(appended, prepended);
        if (appended == appended_ && prepended == prepended_) file_.after = text_of(*paths_);
        return file_;
    }

  private:
    PathFile file_;
    std::unique_ptr<GWFontPath> paths_;
    Texts appended_;
    Texts prepended_;
};

/// Puts the bytes of the file back; false when it is not as it was left.
Result<bool> restore(const PathFile& file) {
    if (!file.after) return false;
    const Result<FileTurn> turn = take_turn_at(file.path);
    if (!turn) return turn.failure();
    if (bytes_of(file.path) != file.after) return false;
    Outcome restored;
    if (file.before) {
        restored = write_vtfontpath(file.path, *file.before);
    } else if (file_calls().unlink(AT_FDCWD, file.path.c_str(), 0) != 0) {
        restored = Failure::of_system(file.path, errno);
    }
    return restored ? Result<bool>(true) : Result<bool>(restored.failure());
}

Outcome insert_all(GWFontPath& paths, const std::vector<ConfiguredPlace>& places) {
    const auto has = [](const Texts& texts, const std::string& text) {
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    };
    std::map<GWFontPath::TYPE, Texts> there;
    for (const ConfiguredPlace& place : places) there.emplace(place.list, texts_of(paths, place.list));
    for (const ConfiguredPlace& place : places) {
        if (has(there[place.list], place.element)) continue;
        if (Outcome inserted = paths.insert(place.list, GW_STRING(place.element.c_str()), place.position - 1);
            !inserted)
            return inserted;
    }
    return done();
}

/// Removes the element from its place, or from where it is now.
Outcome remove_at(GWFontPath& paths, const ConfiguredPlace& place) {
    const Texts texts = texts_of(paths, place.list);
    const auto is_at = [&](std::size_t i) { return i < texts.size() && texts[i] == place.element; };
    if (is_at(static_cast<std::size_t>(place.position) - 1)) return paths.remove(place.list, place.position);
    const auto moved = std::find(texts.begin(), texts.end(), place.element);
    if (moved == texts.end()) return Failure{place.element, Reason::CHANGED_SINCE};
    return paths.remove(place.list, static_cast<int>(moved - texts.begin()) + 1);
}

}  // namespace

bool may_configure(const std::string& element) {
    GWFontPath paths(INSTALLATION_ROOT);
    return !places_of(paths, element).empty();
}

Result<PathChange> configure(const std::string& element, bool in_front) {
    Watched watched;
    GWFontPath& paths = watched.paths();
    const auto [first, last] = own_lists(paths);
    const GWFontPath::TYPE list = in_front ? first : last;
    const Outcome inserted = paths.insert(list, GW_STRING(element.c_str()), in_front ? 0 : -1);
    if (!inserted) return inserted.failure();
    // It may have been read again meanwhile.
    const int position = in_front ? 1 : static_cast<int>(texts_of(paths, list).size());
    const PathFile file = watched.file([&](Texts& appended, Texts& prepended) {
        if (in_front) {
            prepended.erase(prepended.begin());
        } else {
            appended.pop_back();
        }
    });
    return PathChange{{{list, position, element}}, file};
}

Result<PathChange> take_off_paths(const std::string& element) {
    Watched watched;
    GWFontPath& paths = watched.paths();
    if (const Outcome read = paths.was_read(own_lists(paths).back()); !read) return read.failure();
    const std::vector<ConfiguredPlace> places = places_of(paths, element);
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        const Outcome removed = paths.remove(place->list, place->position);
        if (removed) continue;
        (void)insert_all(paths, {place.base(), places.end()});
        return removed.failure();
    }
    const PathFile file = watched.file([&](Texts& appended, Texts& prepended) {
        for (const ConfiguredPlace& place : places) {
            Texts& list = place.list == GWFontPath::USER_APPEND_FP ? appended : prepended;
            const auto index = static_cast<std::ptrdiff_t>(place.position) - 1;
            if (static_cast<std::size_t>(index) <= list.size())
                list.insert(list.begin() + index, place.element);
        }
    });
    return PathChange{places, places.empty() ? PathFile{} : file};
}

Outcome take_off(const PathChange& change) {
    const Result<bool> restored = restore(change.file);
    if (!restored) return restored.failure();
    if (*restored) return done();
    GWFontPath paths(INSTALLATION_ROOT);
    for (const ConfiguredPlace& place : change.places) {
        if (Outcome removed = remove_at(paths, place); !removed) return removed;
    }
    return done();
}

Outcome put_back(const PathChange& change) {
    const Result<bool> restored = restore(change.file);
    if (!restored) return restored.failure();
    if (*restored) return done();
    GWFontPath paths(INSTALLATION_ROOT);
    return insert_all(paths, change.places);
}

std::string alias_directory(const Surroundings& surroundings) {
    return with_trailing_slash(surroundings.own_fonts) + "aliases/";
}

}  // namespace gw::diagnosis
