// SPDX-License-Identifier: MIT
//
// Which names an index gives to font files: the answer of the tools that make indexes, mkfontscale for
// outlines and mkfontdir for bitmap fonts, for each file as if it were alone in a directory.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "model/index_name.h"

namespace gw {

/// For each of the files (absolute paths) its names, in the order of the tool. The tool is chosen by the end
/// of the file's name, in upper or lower case: .ttf .ttc .otf .otc .pfa .pfb, or .bdf .pcf, the latter two
/// also with .gz or .Z behind it. Every other file has no names, nor has one that is no regular file, cannot
/// be read, is larger than `FontBytes::UNPACKED_LIMIT` when it is unpacked, or is nothing that the tool
/// takes. Links are followed.
///
/// A font without a family is called by the name of its file. As a name in an index, it has "_" for blanks
/// and control characters, and an extension in lower case.
///
/// `progress` (may be empty) is called from time to time with the number of files that are done; when it
/// answers false, the others stay without names. A failure only when a tool could not be run at all: it is
/// missing, it does not end even without a font, or there is no room for its index.
///
/// `meanwhile` (may be empty) is called once with the place of each file that a tool is asked about, while
/// the tool is at work on another processor.
Result<std::vector<std::vector<IndexName>>> tool_names(
    const std::vector<std::string>& paths, const std::function<bool(std::size_t)>& progress = {},
    const std::function<void(std::size_t)>& meanwhile = {});

/// The names of one file.
Result<std::vector<IndexName>> tool_names_of(const std::string& path);

}  // namespace gw
