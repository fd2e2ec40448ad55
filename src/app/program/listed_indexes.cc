// SPDX-License-Identifier: MIT
#include "app/program/listed_indexes.h"

#include <string>
#include <vector>

#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "fontpath/font_path_files.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

/// Which directory it is. Its time of modification does not count: listing the fonts of a directory that this
/// user may write makes hidden files in it.
FileStamp identity_stamp(const std::string& directory) {
    const FileStamp stamp = stamp_of(directory);
    return {stamp.device, stamp.inode};
}

/// Directory, index and alias file of each listed directory that answers.
std::vector<FileStamp> stamps_now() {
    std::vector<FileStamp> stamps;
    unsigned count = 0;
    const GW_LIST<GW_STRING>& path = *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count);
    for (const std::string& directory : directories_to_list(path)) {
        stamps.push_back(identity_stamp(directory));
        for (const char* name : {FONT_INDEX_NAME, ALIAS_FILE_NAME})
            stamps.push_back(stamp_of(directory + '/' + name));
    }
    return stamps;
}

struct Noted {
    std::vector<FileStamp> stamps;
    bool is_of_listing = false;  ///< taken before the lists were read, and not shown yet
};

Noted& noted() {
    static Noted all;
    return all;
}

}  // namespace

// What changes while the directories are read is seen as a change afterwards.
void begin_listing() {
    unsigned count = 0;
    (void)find_silent(*the_font_path->get_fpe_list(GWFontPath::ALL_FP, count));
    find_newly_silent(served_path());
    noted() = {stamps_now(), true};
}

void note_listed_indexes() {
    if (!noted().is_of_listing) noted().stamps = stamps_now();
    noted().is_of_listing = false;
}

bool are_indexes_as_listed() {
    return noted().stamps == stamps_now();
}

}  // namespace gw
