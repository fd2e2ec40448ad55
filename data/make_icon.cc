// SPDX-License-Identifier: MIT
//
// Prints the images of the window icon as C++: each PNG file that is named, square and of any depth, as 32
// bits per pixel, 0xAARRGGBB, row by row from the top, alpha not multiplied in.
#include <png.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct Image {
    std::uint32_t size = 0;
    std::vector<std::uint32_t> pixels;
};

[[noreturn]] void fail(const char* path, const char* reason) {
    std::fprintf(stderr, "%s: %s\n", path, reason);
    std::exit(1);
}

Image read(const char* path) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&png, path) == 0) fail(path, png.message);
    if (png.width != png.height || png.width == 0) fail(path, "an icon is square");
    png.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> bytes(std::size_t{4} * png.width * png.height);
    if (png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr) == 0) fail(path, png.message);
    Image image = {png.width, {}};
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        image.pixels.push_back(std::uint32_t{bytes[i + 3]} << 24 | std::uint32_t{bytes[i]} << 16 |
                               std::uint32_t{bytes[i + 1]} << 8 | bytes[i + 2]);
    }
    return image;
}

void print(const Image& image, int number) {
    std::printf("constexpr std::uint32_t IMAGE_%d[] = {", number);
    for (std::size_t i = 0; i < image.pixels.size(); ++i)
        std::printf("%s0x%08x,", i % 8 == 0 ? "\n    " : " ", image.pixels[i]);
    std::printf("\n};\n\n");
}

}  // namespace

int main(int argc, char** argv) {
    std::printf("#include \"app/start/window_icon.h\"\n\nnamespace {\n\n");
    std::vector<Image> images;
    for (int i = 1; i < argc; ++i) {
        images.push_back(read(argv[i]));
        print(images.back(), i);
    }
    std::printf("}  // namespace\n\nstd::vector<gw::IconImage> gw::icon_images() {\n    return {\n");
    for (std::size_t i = 0; i < images.size(); ++i)
        std::printf("        {%u, IMAGE_%zu},\n", images[i].size, i + 1);
    std::printf("    };\n}\n");
    return std::fflush(stdout) == 0 ? 0 : 1;
}
