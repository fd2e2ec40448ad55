// SPDX-License-Identifier: MIT
//
// The resources that are used when no resource file of the class is found. data/app-defaults/Glyphward is a
// full copy, because a class file replaces all of them.
#pragma once

#include <X11/Intrinsic.h>

// Fonts of the server that lists of fonts and the notice at the start have in it, and in the class file.
#define INSTALLED_LIST_FONT "-*-lucidatypewriter-medium-r-normal-sans-0-140-0-0-m-0-iso8859-1"
#define INSTALLED_NOTICE_FONT "-*-charter-bold-r-normal--*-180-75-75-p-*-iso8859-1"

/// Ends with a null pointer.
extern String fallback_res[];
