#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <vector>

/// A picture as a decoder that is not the library's gives it, with no orientation applied.
struct PictureFile {
    int width = 0, height = 0;
    /// Red, green, blue, alpha, row after row; straight alpha.
    std::vector<std::uint8_t> pixels;
    /// What the file asks viewers to do on top: the EXIF value, 1 when none.
    int orientation = 1;

    /// Reads PNG, JPEG, TIFF or HEIC, by the extension; throws std::runtime_error when it cannot.
    explicit PictureFile(const std::filesystem::path& file);

    const std::uint8_t* at(int x, int y) const {
        return &pixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                        static_cast<std::size_t>(x)) *
                       4];
    }

private:
    void readPNG(const char* file);
    void readJPEG(const char* file);
    void readTIFF(const char* file);
    void readHEIC(const char* file);
    void resize(std::uint32_t newWidth, std::uint32_t newHeight);
    std::uint8_t* row(std::size_t y) {
        return pixels.data() + y * static_cast<std::size_t>(width) * 4;
    }
};
