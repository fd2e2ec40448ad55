// SPDX-License-Identifier: MIT
//
// The resources that stand where no resource file of the class is found. data/app-defaults/Glyphward is a
// full copy: a class file replaces them as a whole.
#pragma once

#include <X11/Intrinsic.h>

/// Ends with a null pointer.
extern String fallback_res[];
