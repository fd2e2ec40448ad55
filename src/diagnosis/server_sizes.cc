// SPDX-License-Identifier: MIT
#include "diagnosis/server_sizes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace gw::diagnosis {

namespace {

constexpr std::size_t NONE = std::string_view::npos;
constexpr double TINY = 1e-20;
constexpr double POINTS_PER_INCH = 72.27;
constexpr double DECIPOINTS = 10;
constexpr double DEFAULT_POINTS = 12;

// --- reading a name ----------------------------------------------------------

/// Where the fields stand. Each place is that of the dash in front of the field, `end` behind them all.
struct Places {
    std::size_t pixels = 0;
    std::size_t spacing = 0;
    std::size_t width = 0;
    std::size_t charset = 0;
    std::size_t end = 0;  ///< also where a subset of characters begins
};

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Reads fields one after the other. A failure is final.
class FieldReader {
  public:
    FieldReader(std::string_view name, std::size_t at) : name_(name), at_(at) {}

    [[nodiscard]] bool is_good() const { return at_ != NONE; }
    [[nodiscard]] std::size_t place() const { return at_; }

    /// Goes to the dash in front of the next field.
    void skip() {
        if (is_good()) at_ = name_.find('-', at_ + 1);
    }

    /// A number that ends at a dash; -1 for an asterisk, 0 for nothing. Too large ones lose their upper bits.
    int number() {
        if (!is_good()) return 0;
        ++at_;
        std::uint32_t value = 0;
        if (character() == '*') {
            value = static_cast<std::uint32_t>(-1);
            ++at_;
        } else {
            while (is_digit(character())) value = value * 10 + static_cast<std::uint32_t>(name_[at_++] - '0');
        }
        expect_dash();
        return static_cast<int>(value);
    }

    void size(SizeMatrix& matrix, SizeForm& form, bool& has_asterisk, double unit) {
        if (!is_good()) return;
        std::size_t start = at_ + 1;
        while (start < name_.size() && is_blank(name_[start])) ++start;
        at_ = start;
        if (character() == '[') return read_matrix(matrix, form);
        at_ = start - 1;
        const int value = number();
        if (!is_good()) return;
        has_asterisk = has_asterisk || value < 0;
        if (value <= 0) return;
        form = SizeForm::NUMBER;
        matrix = {value / unit, 0, 0, value / unit};
    }

  private:
    [[nodiscard]] char character() const { return at_ < name_.size() ? name_[at_] : '\0'; }
    void expect_dash() {
        if (character() != '-') at_ = NONE;
    }

    void read_matrix(SizeMatrix& matrix, SizeForm& form) {
        ++at_;
        for (double& number : matrix) {
            if (!real(number)) {
                at_ = NONE;
                return;
            }
        }
        while (is_blank(character())) ++at_;
        if (character() != ']') {
            at_ = NONE;
            return;
        }
        ++at_;
        while (is_blank(character())) ++at_;
        expect_dash();
        if (is_good()) form = SizeForm::MATRIX;
    }

    /// In a name, minus is "~".
    bool real(double& number) {
        while (is_blank(character())) ++at_;
        std::string text(name_.substr(std::min(at_, name_.size()), 80));
        std::replace(text.begin(), text.end(), '~', '-');
        const std::size_t sign = text.starts_with('+') ? 1 : 0;
        const char* const start = text.data() + sign;
        const auto [end, error] = std::from_chars(start, text.data() + text.size(), number);
        if (error != std::errc()) return false;
        at_ += static_cast<std::size_t>(end - text.data());
        return true;
    }

    std::string_view name_;
    std::size_t at_;
};

bool parse(std::string_view name, ServerSizes& sizes, Places& places) {
    constexpr int BEFORE_PIXELS = 6;
    const bool is_dashed = name.starts_with('-');
    if (!is_dashed && !name.starts_with("*-")) return false;
    FieldReader reader(name, is_dashed ? 0 : 1);
    for (int field = 0; field < BEFORE_PIXELS; ++field) reader.skip();
    places.pixels = reader.place();
    reader.size(sizes.pixels, sizes.pixel_form, sizes.has_asterisk, 1);
    reader.size(sizes.points, sizes.point_form, sizes.has_asterisk, DECIPOINTS);
    sizes.x_resolution = reader.number();
    sizes.y_resolution = reader.number();
    places.spacing = reader.place();
    reader.skip();
    places.width = reader.place();
    sizes.width = reader.number();
    places.charset = reader.place();
    reader.skip();
    const std::size_t encoding = reader.place();
    if (!reader.is_good() || name.find('-', encoding + 1) != NONE) return false;
    places.end = std::min(name.find('[', encoding), name.size());
    return true;
}

std::string_view between(std::string_view text, std::size_t start, std::size_t end) {
    return text.substr(start, end - start);
}

// --- writing a name ----------------------------------------------------------

std::string text_of(const SizeMatrix& matrix, SizeForm form, double unit) {
    constexpr double HALF = 0.5;
    if (form != SizeForm::MATRIX) return std::to_string(static_cast<int>(matrix[3] * unit + HALF));
    std::string text = "[";
    for (const double number : matrix) {
        std::array<char, 32> digits = {};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        text.append(text.size() > 1 ? " " : "").append(digits.data(), end);
    }
    std::replace(text.begin(), text.end(), '-', '~');
    return text + ']';
}

std::string written(std::string_view name, const Places& places, const ServerSizes& sizes) {
    return std::string(name.substr(0, places.pixels + 1)) + text_of(sizes.pixels, sizes.pixel_form, 1) + '-' +
           text_of(sizes.points, sizes.point_form, DECIPOINTS) + '-' + std::to_string(sizes.x_resolution) +
           '-' + std::to_string(sizes.y_resolution) +
           std::string(between(name, places.spacing, places.width + 1)) + std::to_string(sizes.width) +
           std::string(between(name, places.charset, places.end));
}

// --- completing --------------------------------------------------------------

/// Up to ten binary digits, as the server does it on amd64: always to the next larger number.
double rounded(double value) {
    constexpr std::uint64_t LAST_DIGIT = std::uint64_t{1} << 43;
    if (value == 0) return value;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return std::bit_cast<double>((bits + LAST_DIGIT) & ~(LAST_DIGIT - 1));
}

/// The resolution that pixels and points have between them.
int resolution_of(double pixels, double points) {
    constexpr double HALF = 0.5;
    return static_cast<int>(pixels * POINTS_PER_INCH / points + HALF);
}

bool complete_resolution(ServerSizes& sizes, ScreenResolution screen) {
    if (sizes.has_all_sizes()) {
        if (sizes.x_resolution <= 0) sizes.x_resolution = screen.x;
        if (sizes.y_resolution <= 0) sizes.y_resolution = screen.y;
        return true;
    }
    const auto column = [](const SizeMatrix& matrix, std::size_t number) {
        return std::hypot(matrix[number], matrix[number + 2]);
    };
    if (sizes.y_resolution <= 0) {
        const double points = std::hypot(sizes.points[1], sizes.points[3]);
        if (points < TINY) return false;
        sizes.y_resolution = resolution_of(std::hypot(sizes.pixels[1], sizes.pixels[3]), points);
    }
    if (sizes.x_resolution <= 0) {
        if (sizes.pixel_form == SizeForm::NUMBER) {
            sizes.x_resolution = sizes.y_resolution;
        } else {
            if (column(sizes.points, 0) < TINY) return false;
            sizes.x_resolution = resolution_of(column(sizes.pixels, 0), column(sizes.points, 0));
        }
    }
    return sizes.x_resolution > 0 && sizes.y_resolution > 0;
}

void take_points_from_pixels(ServerSizes& sizes, double across, double down) {
    constexpr double HALF = 0.5;
    const SizeMatrix& pixels = sizes.pixels;
    sizes.points = {pixels[0] / across, pixels[1] / down, pixels[2] / across, pixels[3] / down};
    const bool is_matrix = sizes.pixel_form == SizeForm::MATRIX;
    sizes.point_form = is_matrix ? SizeForm::MATRIX : SizeForm::NUMBER;
    if (is_matrix) return;
    for (const std::size_t place : {0UL, 3UL})
        sizes.points[place] = static_cast<int>(sizes.points[place] * DECIPOINTS + HALF) / DECIPOINTS;
}

/// The pixels follow from points and resolution. False when they are not those that were given.
bool take_pixels_from_points(ServerSizes& sizes, double across, double down, double tolerance) {
    const SizeMatrix& points = sizes.points;
    const SizeMatrix pixels = {points[0] * across, points[1] * down, points[2] * across, points[3] * down};
    for (std::size_t i = 0; i < pixels.size() && sizes.pixel_form != SizeForm::NONE; ++i) {
        if (std::abs(sizes.pixels[i] - pixels[i]) > (i == 0 ? tolerance : 1)) return false;
    }
    const bool is_matrix = sizes.point_form == SizeForm::MATRIX;
    if (sizes.pixel_form == SizeForm::MATRIX && !is_matrix) {
        take_points_from_pixels(sizes, across, down);
    } else {
        sizes.pixels = pixels;
        sizes.pixel_form = is_matrix ? SizeForm::MATRIX : SizeForm::ADJUSTED;
    }
    return true;
}

}  // namespace

double length_across(const SizeMatrix& matrix) {
    return std::hypot(matrix[0], matrix[1]);
}
double length_down(const SizeMatrix& matrix) {
    return std::hypot(matrix[2], matrix[3]);
}

std::optional<ServerSizes> sizes_in(const std::string& name) {
    ServerSizes sizes;
    Places places;
    return parse(name, sizes, places) ? std::optional(sizes) : std::nullopt;
}

std::optional<ZeroedName> zeroed(const std::string& name) {
    ZeroedName result;
    Places places;
    if (!parse(name, result.sizes, places)) return {};
    result.sizes.has_subset = places.end < name.size();
    const std::string_view text = name;
    const std::string_view spacing = between(text, places.spacing, places.width + 1);
    result.name.append(text.substr(0, places.pixels + 1)).append("0-0-*-*");
    result.name.append(spacing.size() > 2 ? spacing : "-*-").append("0");
    result.name.append(between(text, places.charset, places.end));
    return result;
}

std::string name_of_face(const std::string& name, const ServerSizes& its_sizes) {
    ServerSizes sizes;
    Places places;
    if (!parse(name, sizes, places)) return name;
    ServerSizes none;
    none.x_resolution = its_sizes.x_resolution;
    none.y_resolution = its_sizes.y_resolution;
    return written(name, places, none);
}

std::optional<std::string> with_sizes(const std::string& name, const ServerSizes& sizes,
                                      const std::string& subset) {
    ServerSizes taken;
    Places places;
    if (!parse(name, taken, places)) return {};
    if (sizes.pixel_form != SizeForm::NONE) {
        taken.pixels = sizes.pixels;
        taken.pixel_form = sizes.pixel_form;
    }
    if (sizes.point_form != SizeForm::NONE) {
        taken.points = sizes.points;
        taken.point_form = sizes.point_form;
    }
    if (sizes.x_resolution >= 0) taken.x_resolution = sizes.x_resolution;
    if (sizes.y_resolution >= 0) taken.y_resolution = sizes.y_resolution;
    if (sizes.width >= 0) taken.width = sizes.width;
    return written(name, places, taken) + (sizes.has_subset && subset.empty() ? "[]" : subset);
}

bool complete(ServerSizes& sizes, ScreenResolution screen) {
    if (!complete_resolution(sizes, screen)) return false;
    if (!sizes.has_size()) {
        sizes.points = {DEFAULT_POINTS, 0, 0, DEFAULT_POINTS};
        sizes.point_form = SizeForm::NUMBER;
    }
    double tolerance = 1;
    if (sizes.pixel_form == SizeForm::NUMBER) {
        tolerance = static_cast<double>(sizes.x_resolution) / sizes.y_resolution;
        sizes.pixels[0] *= tolerance;
        sizes.pixel_form = SizeForm::ADJUSTED;
    }
    const double across = sizes.x_resolution / POINTS_PER_INCH;
    const double down = sizes.y_resolution / POINTS_PER_INCH;
    bool do_pixels_follow = true;
    if (sizes.point_form == SizeForm::NONE) {
        take_points_from_pixels(sizes, across, down);
        do_pixels_follow = sizes.point_form == SizeForm::NUMBER;
    }
    if (do_pixels_follow && !take_pixels_from_points(sizes, across, down, tolerance)) return false;
    for (SizeMatrix* matrix : {&sizes.pixels, &sizes.points})
        for (double& number : *matrix) number = rounded(number);
    return true;
}

bool is_of_size(const ServerSizes& listed, const ServerSizes& wanted) {
    const bool has_width =
        listed.width == wanted.width || listed.width == 0 || wanted.width == 0 || wanted.width == -1;
    const bool has_pixels = wanted.pixel_form == SizeForm::NONE ||
                            (listed.pixel_form == wanted.pixel_form && listed.pixels == wanted.pixels);
    const bool has_points = wanted.point_form == SizeForm::NONE ||
                            (listed.point_form == wanted.point_form && listed.points == wanted.points);
    return listed.x_resolution == wanted.x_resolution && listed.y_resolution == wanted.y_resolution &&
           has_width && has_pixels && has_points;
}

std::optional<Scaling> scaling(const ServerSizes& from, const ServerSizes& to) {
    Scaling result;
    const double source_across = length_across(from.pixels);
    if (source_across >= TINY) result.across = length_across(to.pixels) / source_across;
    if (from.width > 0 && to.width > 0 && std::abs(result.across) > TINY) {
        const double widened = static_cast<double>(to.width) / from.width;
        if (to.has_matrix()) {
            constexpr double ONE_PIXEL = 10;
            if (std::abs(widened * from.width - result.across * from.width) >= ONE_PIXEL) return {};
        } else {
            result.widening = widened / result.across;
            result.across = widened;
        }
    }
    const double source_down = length_down(from.pixels);
    if (source_down >= TINY) result.down = length_down(to.pixels) / source_down;
    return result;
}

}  // namespace gw::diagnosis
