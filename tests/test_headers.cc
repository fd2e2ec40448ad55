// SPDX-License-Identifier: MIT
//
// Nothing of its own: compiled for its headers, which the tests share precompiled.
