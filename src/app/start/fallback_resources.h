// SPDX-License-Identifier: MIT
//
// The resources that are used when no resource file of the class is found. data/app-defaults/Glyphward is a
// full copy, because a class file replaces all of them.
#pragma once

#include <X11/Intrinsic.h>

/// Ends with a null pointer.
extern String fallback_res[];
