// SPDX-License-Identifier: MIT
//
// One file: its directory and name, and its file type and extension type.
#pragma once

#include <string>
#include <string_view>

#include "core/gw_int.h"
#include "core/gw_list.h"

namespace gw {

/// The kind of a file in the file system.
enum FileType {
    FILE_TYPE_OTHER = -1,        ///< neither a regular file nor a directory, or missing
    FILE_TYPE_REGULAR = 0,       ///< a regular file
    FILE_TYPE_DIRECTORY = 1,     ///< a directory
    FILE_TYPE_UNDETERMINED = 2,  ///< not looked at yet
};

/// The kind of a font file, by its name.
enum ExtType {
    EXT_PFA = 0,
    EXT_PFB = 1,
    EXT_AFM = 2,
    EXT_PS = 3,
    EXT_PS_Z = 4,
    EXT_PCF = 5,
    EXT_PCF_Z = 6,
    EXT_UNKNOWN = 7,
    EXT_PCF_GZ = 8,
    EXT_TTF = 9,
    EXT_TTC = 10,
    EXT_OTF = 11,
    EXT_OTC = 12,
    EXT_BDF = 13,
    EXT_BDF_Z = 14,
    EXT_BDF_GZ = 15,
};

}  // namespace gw

class GW_FILE_SPEC {
  public:
    /// `dir` gets a trailing "/" when it has none. The codes are those of `gw::FileType` and `gw::ExtType`.
    GW_FILE_SPEC(const char* name, const char* dir, int file_type, int ext_type);
    /// A copy of name, directory and file type. Kept: a copy of a file specification has no extension type.
    /// Its type is unknown (7).
    explicit GW_FILE_SPEC(const GW_FILE_SPEC* other);
    GW_FILE_SPEC(const GW_FILE_SPEC&) = delete;
    GW_FILE_SPEC& operator=(const GW_FILE_SPEC&) = delete;

    /// Makes this stand for another file; arguments as for the constructor.
    void init(const char* new_name, const char* new_dir, int new_file_type, int new_ext_type);

    [[nodiscard]] int get_file_type() const { return file_type; }
    [[nodiscard]] int get_ext_type() const { return ext_type; }
    void set_file_type(int type) { file_type = type; }
    void set_ext_type(int type) { ext_type = type; }
    /// The file's own name, its directory (ending in "/"), and both joined; owned by this object.
    [[nodiscard]] const char* get_name() const { return get_path() + dir_length; }
    [[nodiscard]] const char* get_dir() const { return texts.c_str(); }
    [[nodiscard]] const char* get_path() const { return texts.c_str() + dir_length + 1; }

    /// Writes "[prefix  ]PATH" as a line to `file`; nothing when `file` is null.
    void print(const char* prefix, GW_FILE* file) const;
    /// `strcmp` of the names. Kept: files of the same name are equal in all directories.
    int compare(const GW_FILE_SPEC* other) const;
    int equal(const GW_FILE_SPEC* other) const;

    /// Calls `stat` (which follows links): 1 directory, 0 regular, -1 other or missing. Kept: a file that
    /// cannot be examined is a directory of size 1. That is one for which `stat` fails although it is not
    /// missing. The result is returned, not stored.
    [[nodiscard]] int get_file_type_from_stat() const;
    /// 1 unless the file is missing.
    [[nodiscard]] int exist() const;
    /// Whether the file is in the directory `other`, whichever paths name the two directories.
    [[nodiscard]] bool is_in_directory(const char* other) const;
    /// The size in bytes; 0 when the file is missing, 1 when `stat` fails for another reason.
    [[nodiscard]] long file_size() const;
    /// Unlinks the file. Kept: removing, seeking and copying always return 1.
    int remove() const;

    /// 1 when the file type is one of `types`, else 0.
    int file_type_equal(const GW_LIST<GW_INT>* types) const;
    /// 1 when the file type is `wanted_file_type` and the extension type is one of `exts`, else 0.
    int ext_type_equal(const GW_LIST<GW_INT>* exts, int wanted_file_type) const;

  private:
    void set_texts(std::string_view name, std::string_view dir);

    int file_type;
    int ext_type;
    // The directory and the path, in one piece, because lists have many thousands of them.
    std::size_t dir_length = 0;
    std::string texts;
};
