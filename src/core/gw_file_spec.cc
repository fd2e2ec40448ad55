// SPDX-License-Identifier: MIT
#include "core/gw_file_spec.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "core/gw_file.h"
#include "core/text.h"

namespace {

bool contains(const GW_LIST<GW_INT>* codes, int code) {
    return std::any_of(codes->begin(), codes->end(),
                       [code](const GW_INT* c) { return c->get_value() == code; });
}

}  // namespace

GW_FILE_SPEC::GW_FILE_SPEC(const char* file_name, const char* file_dir, int type, int ext)
    : file_type(type), ext_type(ext) {
    set_texts(file_name, file_dir);
}

GW_FILE_SPEC::GW_FILE_SPEC(const GW_FILE_SPEC* other)
    : GW_FILE_SPEC(other->get_name(), other->get_dir(), other->file_type, gw::EXT_UNKNOWN) {}

void GW_FILE_SPEC::init(const char* new_name, const char* new_dir, int new_file_type, int new_ext_type) {
    set_texts(new_name, new_dir);
    file_type = new_file_type;
    ext_type = new_ext_type;
}

void GW_FILE_SPEC::set_texts(std::string_view name, std::string_view dir) {
    const std::string_view slash = dir.ends_with('/') ? "" : "/";
    std::string joined;  // the arguments may be parts of the texts
    joined.reserve(2 * (dir.size() + 1) + name.size() + 1);
    ((joined += dir) += slash) += '\0';
    (((joined += dir) += slash) += name);
    dir_length = dir.size() + slash.size();
    texts = std::move(joined);
}

void GW_FILE_SPEC::print(const char* prefix, GW_FILE* file) const {
    if (file == nullptr) return;
    const std::string lead = prefix != nullptr ? std::string(prefix) + "  " : std::string();
    file->put_line((lead + get_path() + '\n').c_str());
}

int GW_FILE_SPEC::compare(const GW_FILE_SPEC* other) const {
    return std::strcmp(get_name(), other->get_name());
}

int GW_FILE_SPEC::equal(const GW_FILE_SPEC* other) const {
    return compare(other) == 0 ? 1 : 0;
}

int GW_FILE_SPEC::get_file_type_from_stat() const {
    struct stat info = {};
    if (::stat(get_path(), &info) == 0) {
        if (S_ISDIR(info.st_mode)) return gw::FILE_TYPE_DIRECTORY;
        return S_ISREG(info.st_mode) ? gw::FILE_TYPE_REGULAR : gw::FILE_TYPE_OTHER;
    }
    return errno == ENOENT ? gw::FILE_TYPE_OTHER : gw::FILE_TYPE_DIRECTORY;
}

int GW_FILE_SPEC::exist() const {
    struct stat info = {};
    return ::stat(get_path(), &info) == 0 || errno != ENOENT ? 1 : 0;
}

bool GW_FILE_SPEC::is_in_directory(const char* other) const {
    if (gw::with_trailing_slash(other) == get_dir()) return true;
    struct stat mine = {};
    struct stat theirs = {};
    return ::stat(get_dir(), &mine) == 0 && ::stat(other, &theirs) == 0 && mine.st_dev == theirs.st_dev &&
           mine.st_ino == theirs.st_ino;
}

long GW_FILE_SPEC::file_size() const {
    struct stat info = {};
    if (::stat(get_path(), &info) == 0) return info.st_size;
    return errno == ENOENT ? 0 : 1;
}

int GW_FILE_SPEC::remove() const {
    ::unlink(get_path());
    return 1;
}

int GW_FILE_SPEC::file_type_equal(const GW_LIST<GW_INT>* types) const {
    return contains(types, file_type) ? 1 : 0;
}

int GW_FILE_SPEC::ext_type_equal(const GW_LIST<GW_INT>* exts, int wanted_file_type) const {
    return file_type == wanted_file_type && contains(exts, ext_type) ? 1 : 0;
}
