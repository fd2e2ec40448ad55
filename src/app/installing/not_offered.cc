// SPDX-License-Identifier: MIT
#include "app/installing/not_offered.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include "app/installing/font_source.h"
#include "app/installing/source_verdicts.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "core/gw_dir.h"
#include "core/gw_fspec_list.h"
#include "core/text.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

namespace gw {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 4> INDEXES = {FONT_INDEX_NAME, SCALABLE_INDEX_NAME, ALIAS_FILE_NAME,
                                                     "encodings.dir"};

/// Where the fonts of the source are, and whether its subdirectories belong to it.
struct Place {
    std::string root;
    bool has_subdirectories = false;
    std::optional<std::set<std::string, std::less<>>> names = {};  ///< the files that were chosen, if not all
};

std::vector<Place> places_of_source() {
    if (install_from == FROM_DIRECTORY) return {{with_trailing_slash(current_dir)}};
    if (install_from != FROM_FILES) return {{install_from == FROM_FLOPPY ? FLOPPY_MOUNT : CDROM_MOUNT, true}};
    std::vector<Place> places;
    for (const GWFilesDriver::Place& place : current_files_driver->get_places())
        places.push_back({place.dir, false, place.names});
    return places;
}

void add_chosen_files(std::set<std::string>& paths, const Place& place) {
    for (const std::string& name : *place.names) {
        std::error_code gone;
        if (fs::is_regular_file(place.root + name, gone)) paths.insert(place.root + name);
    }
}

template <class Iterator>
void add_files(std::set<std::string>& paths, const std::string& root) {
    std::error_code failed;
    for (Iterator entry(root, fs::directory_options::skip_permission_denied, failed);
         !failed && entry != Iterator(); entry.increment(failed)) {
        std::error_code gone;
        const std::string name = entry->path().filename();
        const bool is_index = std::find(INDEXES.begin(), INDEXES.end(), name) != INDEXES.end();
        if (!is_index && entry->is_regular_file(gone)) paths.insert(entry->path());
    }
}

std::set<std::string> files_of(const Place& place) {
    std::set<std::string> paths;
    if (place.names) {
        add_chosen_files(paths, place);
    } else if (place.has_subdirectories) {
        add_files<fs::recursive_directory_iterator>(paths, place.root);
    } else {
        add_files<fs::directory_iterator>(paths, place.root);
    }
    return paths;
}

/// The files that have the extension of a font.
std::set<std::string> font_files_of(const Place& place) {
    GW_FSPEC_LIST found;
    const ElementsOwner owner(found);
    GW_DIR dir(place.root.c_str());
    if (place.names) dir.choose(*place.names);
    the_fsm_list.list_font_file_names(found, &dir, place.has_subdirectories ? 1 : 0);
    std::set<std::string> paths;
    for (const GW_FILE_SPEC* spec : found) paths.insert(spec->get_path());
    return paths;
}

/// What the list has of each file: "" for one that is offered, otherwise the line that says why it is not.
class ListedFiles {
  public:
    ListedFiles() {
        for (const GWHRNElement* elem : current_hrn_list) {
            for (const GWHRNElement::PointSize& size : elem->get_slots()) {
                for (const Ref<GWFont>& font : size.fonts) add(*font);
            }
        }
    }
    /// Null for a file that is not in the list.
    [[nodiscard]] const std::string* find(const std::string& path) const {
        const auto found = lines_.find(path);
        return found != lines_.end() ? &found->second : nullptr;
    }

  private:
    void add(const GWFont& font) {
        if (font.get_font_file_list() == nullptr) return;
        const std::string line = obstacle_line(font);
        for (const GW_FILE_SPEC* spec : *font.get_font_file_list()) {
            std::string& known = lines_.try_emplace(original_path(*spec), line).first->second;
            if (line.empty()) known.clear();
        }
    }
    std::map<std::string, std::string> lines_;
};

void look_at_place(NotOffered& result, const Place& place, const ListedFiles& listed) {
    const std::set<std::string> font_files = font_files_of(place);
    for (const std::string& path : files_of(place)) {
        ++result.files;
        if (const std::string* line = listed.find(path); line != nullptr) {
            if (!line->empty()) result.lines.push_back(*line);
        } else if (font_files.contains(path)) {
            result.lines.push_back(escaped(path.substr(place.root.size())) + ": " +
                                   text_of(Message::NOTHING_IN_FILE));
        } else {
            ++result.others;
        }
    }
}

}  // namespace

std::string NotOffered::summary() const {
    if (count() == 0) return "";
    if (files == 1 && window_policy().speaks_in_sentences()) return text_of(Message::ONLY_FILE_NOT_OFFERED);
    return text_of(Message::NOT_OFFERED_COUNT, {std::to_string(count()), std::to_string(files)});
}

std::vector<std::string> NotOffered::all_lines() const {
    std::vector<std::string> all = lines;
    if (others == 1 && window_policy().speaks_in_sentences()) {
        all.emplace_back(text_of(Message::ONE_OTHER_FILE));
    } else if (others > 0) {
        all.push_back(text_of(Message::OTHER_FILES, static_cast<unsigned>(others)));
    }
    return all;
}

NotOffered find_not_offered() {
    NotOffered result;
    if (current_driver == nullptr) return result;
    const ListedFiles listed;
    for (const Place& place : places_of_source()) look_at_place(result, place, listed);
    return result;
}

}  // namespace gw
