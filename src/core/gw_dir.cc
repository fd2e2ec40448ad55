// SPDX-License-Identifier: MIT
#include "core/gw_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <set>
#include <utility>

#include "core/directory.h"
#include "core/font_policy.h"
#include "core/gw_file.h"
#include "core/gw_reg_exp.h"
#include "core/gw_token_string.h"
#include "core/gw_token_table.h"
#include "core/text.h"

namespace {

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};
using OpenDir = std::unique_ptr<DIR, DirCloser>;

using DirIdentity = std::pair<dev_t, ino_t>;

/// What the directory says of an entry's type; "undetermined" where only `stat` can say it.
int type_of(const dirent& entry) {
    if (entry.d_type == DT_REG) return gw::FILE_TYPE_REGULAR;
    return entry.d_type == DT_DIR ? gw::FILE_TYPE_DIRECTORY : gw::FILE_TYPE_UNDETERMINED;
}

/// Whether files in the open directory can be looked at.
bool is_searchable(DIR* dir) {
    return ::faccessat(::dirfd(dir), ".", X_OK, AT_EACCESS) == 0;
}

/// Whether this is the first time that the directory at `path` is seen.
bool first_visit(std::set<DirIdentity>& seen, const char* path) {
    struct stat info = {};
    if (::stat(path, &info) != 0) return true;
    return seen.insert({info.st_dev, info.st_ino}).second;
}

}  // namespace

GW_DIR::GW_DIR(const char* dir_path) : path(gw::with_trailing_slash(dir_path).c_str()) {}

void GW_DIR::print(const char* prefix, GW_FILE* file) const {
    path.print(prefix, file);
}

int GW_DIR::equal(const GW_DIR* other) const {
    return path.equal(&other->path);
}

int GW_DIR::file_name_check(const char* name, const GW_TOKEN_TABLE* table, int& ext_type) {
    if (gw::font_policy().takes_any_file_name()) {
        ext_type = table->get_id_of_end(name);
        return ext_type != table->get_default_id() ? 1 : 0;
    }
    static constexpr const char* DELIMITERS = ".\n";
    ext_type = table->get_default_id();
    GW_TOKEN_STRING parts(name);
    parts.get_first_token(DELIMITERS);
    const char* second = parts.get_next_token(DELIMITERS);
    if (second == nullptr) return 0;
    std::string extension = std::string(".") + second;
    if (const char* third = parts.get_next_token(DELIMITERS); third != nullptr) {
        extension += std::string(".") + third;
        if (parts.get_next_token(DELIMITERS) != nullptr) return 0;
    }
    ext_type = table->get_id(extension.c_str());
    return ext_type != table->get_default_id() ? 1 : 0;
}

int GW_DIR::get_dir_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, const GW_TOKEN_TABLE* table) const {
    return get_matching_file_spec_list(&out, nullptr, table);
}

int GW_DIR::get_matching_file_spec_list(GW_LIST<GW_FILE_SPEC>* out, GW_REG_EXP* re,
                                        const GW_TOKEN_TABLE* table) const {
    const OpenDir dir(::opendir(get_path()));
    if (!dir) return 0;
    const bool has_types = is_searchable(dir.get());
    while (const dirent* entry = ::readdir(dir.get())) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) continue;
        if (std::strcmp(name, gw::OWN_DIRECTORY_NAME) == 0 || !has_chosen(name)) continue;
        if (re != nullptr && re->string_match(name) == 0) continue;

        const int type = has_types ? type_of(*entry) : gw::FILE_TYPE_UNDETERMINED;
        int ext_type = gw::EXT_UNKNOWN;
        const bool is_wanted = table != nullptr && file_name_check(name, table, ext_type) != 0;
        if (type == gw::FILE_TYPE_REGULAR && !is_wanted) continue;
        auto spec = std::make_unique<GW_FILE_SPEC>(name, get_path(), type, gw::EXT_UNKNOWN);
        if (type == gw::FILE_TYPE_UNDETERMINED) spec->set_file_type(spec->get_file_type_from_stat());
        if (spec->get_file_type() == gw::FILE_TYPE_DIRECTORY) {
            if (chosen) continue;
        } else {
            if (!is_wanted) continue;
            spec->set_ext_type(ext_type);
        }
        out->append(spec.release());
    }
    return 1;
}

int GW_DIR::get_file_spec_list(GW_LIST<GW_FILE_SPEC>& out, int recursive, const GW_TOKEN_TABLE* table) const {
    const int result = get_dir_file_spec_list(out, table);
    if (recursive == 0) return result;

    std::set<DirIdentity> seen;
    first_visit(seen, get_path());
    for (const GW_FILE_SPEC* spec = out.get_first(); spec != nullptr; spec = out.get_next()) {
        if (spec->get_file_type() != gw::FILE_TYPE_DIRECTORY || !first_visit(seen, spec->get_path()))
            continue;
        GW_DIR(spec->get_path()).get_dir_file_spec_list(out, table);
    }
    return result;
}
