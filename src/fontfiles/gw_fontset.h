// SPDX-License-Identifier: MIT
//
// A fontset: a named group of base fonts, one per character set, that a multilingual program opens together.
//
// The fontset owns its base fonts, together with everybody else who holds a `gw::Ref` to one.
#pragma once

#include <optional>
#include <string>

#include "core/gw_base.h"
#include "core/gw_list.h"
#include "core/ref.h"

class GWFont;

class GWFontSet : public GW_BASE, public gw::RefCounted {
  public:
    /// A fontset without base fonts.
    explicit GWFontSet(const char* name);
    ~GWFontSet() override;
    GWFontSet(const GWFontSet&) = delete;
    GWFontSet& operator=(const GWFontSet&) = delete;

    [[nodiscard]] const char* get_name() const { return name.c_str(); }
    /// The names of the base fonts joined with ",", as `XCreateFontSet` wants them; null while there are
    /// none. Owned by this object, good until the next change.
    [[nodiscard]] const char* get_base_names() const { return base_names ? base_names->c_str() : nullptr; }
    [[nodiscard]] const GW_LIST<GWFont>& get_fonts() const { return fonts; }

    void update_fontset_name(const char* new_name);
    /// Adds a bitmap font of that XLFD name after the others.
    void append_base_font(const char* xlfd);
    /// Gives the first base font of the same character set the new name, in its place; appends a font when
    /// there is none. Kept: the character set of a base font is searched for anywhere in a name. The text
    /// that is searched for is "REGISTRY-ENCODING", so "iso8859-1" is found in a name of iso8859-15, and the
    /// "-" of a base font whose name has not fourteen fields is found in every XLFD name.
    void update_base_font(const char* xlfd);
    /// Joins the names again from the font records.
    void update_base_names();

    /// The text of this fontset in a fontset file: one line for the name, one for each base font.
    [[nodiscard]] std::string definition() const;

    /// 1 when `other` is a fontset of the same name, else 0. The base fonts do not count.
    int equal(const GW_BASE* other) const override;

  private:
    void append_name(const char* xlfd);

    std::string name;
    std::optional<std::string> base_names;
    GW_LIST<GWFont> fonts;
};
