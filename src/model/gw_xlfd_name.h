// SPDX-License-Identifier: MIT
//
// Splits X Logical Font Description names ("-foundry-family-...", X Consortium standard XLFD 1.5) into their
// 14 fields.
#pragma once

/// 1 when `s` holds exactly 14 dashes, else 0.
int is_xlfd_name(const char* s);

/// Works like `strtok` over one name at a time: called with a name, returns its first field; called with
/// null, the next one, and after the last field the last one again. A field holds at most 999 characters. The
/// empty text when the name is not an XLFD name. The result is valid until the next call.
const char* extract_next_field(const char* s);
