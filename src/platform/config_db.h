// SPDX-License-Identifier: MIT
//
// The window system's configuration database: attributes of instances of classes, in a text file with X
// resource syntax ("XDISPLAY.0.fontpath:<tab>/a/,/b/"). One database is open at a time. Files are written
// atomically, attributes in alphabetical order.
#pragma once

#include <string>

#include "core/failure.h"

/// Opens the database at `path`; the four numbers select access modes and are always 0, 1, 0, 0. Returns 0
/// when it was read, 1 when the file is missing or empty (it can be written, but has nothing to read),
/// anything else when it cannot be read or is no database.
int config_db_open(const char* path, int, int, int, int);

/// The value of the attribute, or null. Freed with `config_db_free_attribute`.
char* config_db_get_attribute(const char* class_name, const char* instance, const char* attribute);
void config_db_free_attribute(char* value);

/// Sets the attribute in the open database; 0 on success.
int config_db_set_attribute(const char* class_name, const char* instance, const char* attribute,
                            const char* value);

/// With a path: writes the database to that file and returns 0 when its bytes are on disk. With null:
/// discards changes. The database is closed in every case; without an open one the result is not 0.
int config_db_close(const char* path);

namespace gw {

/// `config_db_close` with a path; the outcome tells why the file could not be written.
Outcome save_config_db(const std::string& path);

}  // namespace gw
