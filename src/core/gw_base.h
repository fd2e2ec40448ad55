// SPDX-License-Identifier: MIT
//
// The root of the core classes, so that lists can print, compare and match elements of any kind.
#pragma once

class GW_FILE;

class GW_BASE {
  public:
    GW_BASE() = default;
    virtual ~GW_BASE() = default;

    /// Writes one diagnostic line to `file`, preceded by `prefix`; nothing when `file` is null. The base
    /// writes nothing.
    virtual void print(const char* prefix, GW_FILE* file) const;

    /// Order of two objects; -1 in the base.
    virtual int compare(const GW_BASE* other) const;

    /// Non-zero when both count as equal. The base answers -1 (true) for any argument, so a list that removes
    /// by equality takes its first element when the element type has no equality of its own. Kept: objects
    /// without an equality of their own are all equal.
    virtual int equal(const GW_BASE* other) const;

  protected:
    GW_BASE(const GW_BASE&) = default;
    GW_BASE& operator=(const GW_BASE&) = default;
};
