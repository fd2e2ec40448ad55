// SPDX-License-Identifier: MIT
//
// The fields of a full font name that have its size, as the font library of the X server understands them
// (libXfont2): what is missing is made up from the rest, and all is rounded, so that two names of one size
// have the same numbers.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "fontpath/server_view.h"

namespace gw::diagnosis {

/// "[a b c d]"; a plain size s is [s 0 0 s].
using SizeMatrix = std::array<double, 4>;

enum class SizeForm {
    NONE,      ///< 0, an asterisk or nothing
    NUMBER,    ///< as it is written
    ADJUSTED,  ///< a number, made to fit the shape of the server's dots
    MATRIX,
};

struct ServerSizes {
    SizeMatrix pixels = {};
    SizeMatrix points = {};  ///< not decipoints
    SizeForm pixel_form = SizeForm::NONE;
    SizeForm point_form = SizeForm::NONE;
    bool has_asterisk = false;  ///< for the pixels or the points
    bool has_subset = false;    ///< only some characters are wanted
    int x_resolution = 0;       ///< -1 for an asterisk, as the two below
    int y_resolution = 0;
    int width = 0;

    [[nodiscard]] bool has_size() const {
        return pixel_form != SizeForm::NONE || point_form != SizeForm::NONE;
    }
    [[nodiscard]] bool has_all_sizes() const {
        return pixel_form == SizeForm::NONE || point_form == SizeForm::NONE;
    }
    [[nodiscard]] bool has_matrix() const {
        return pixel_form == SizeForm::MATRIX || point_form == SizeForm::MATRIX;
    }
};

/// The sizes of a full name in lower case; no value when it is none.
[[nodiscard]] std::optional<ServerSizes> sizes_in(const std::string& name);

/// A name without its sizes, by which the server looks for what it can scale: each size is 0, each resolution
/// an asterisk, and no subset of characters is left.
struct ZeroedName {
    std::string name;
    ServerSizes sizes;  ///< that it had
};
[[nodiscard]] std::optional<ZeroedName> zeroed(const std::string& name);

/// The full name, which must be one, with no sizes but its resolution: what bitmaps of one face have in
/// common.
[[nodiscard]] std::string name_of_face(const std::string& name, const ServerSizes& its_sizes);

/// The full name with these sizes in the place of its own, but where they have none, and with the subset
/// ("[65_90]", or ""). No value when it is no full name.
[[nodiscard]] std::optional<std::string> with_sizes(const std::string& name, const ServerSizes& sizes,
                                                    const std::string& subset);

/// Fills in what follows from the rest and from the screen. False when the sizes contradict each other.
bool complete(ServerSizes& sizes, ScreenResolution screen);

/// Whether a font of the one size is what is wanted; both completed.
[[nodiscard]] bool is_of_size(const ServerSizes& listed, const ServerSizes& wanted);

/// How many times larger a bitmap becomes.
struct Scaling {
    double across = 0;
    double down = 0;
    double widening = 1;  ///< that follows from the wanted width
};
/// No value when the server does not make the one of the other.
[[nodiscard]] std::optional<Scaling> scaling(const ServerSizes& from, const ServerSizes& to);

/// The lengths that the two axes have.
[[nodiscard]] double length_across(const SizeMatrix& matrix);
[[nodiscard]] double length_down(const SizeMatrix& matrix);

}  // namespace gw::diagnosis
