#pragma once

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <libheif/heif.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

/// A picture as a decoder that is not the library's gives it, with no orientation applied.
struct PictureFile {
    int width = 0, height = 0;
    /// Red, green, blue, alpha, row after row; straight alpha.
    std::vector<std::uint8_t> pixels;
    /// What the file asks viewers to do on top: the EXIF value, 1 when none.
    int orientation = 1;

    /// Throws std::runtime_error when it cannot be read.
    explicit PictureFile(const std::filesystem::path& file) {
        if (file.extension() == ".heic")
            readHEIC(file.c_str());
        else if (file.extension() == ".tiff")
            readTIFF(file.c_str());
        else
            readOther(file.c_str());
    }
    const std::uint8_t* at(int x, int y) const {
        return &pixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                        static_cast<std::size_t>(x)) *
                       4];
    }

private:
    void take(int itsWidth, int itsHeight, const std::uint8_t* plane, int stride) {
        width = itsWidth;
        height = itsHeight;
        for (int y = 0; y < height; ++y, plane += stride)
            pixels.insert(pixels.end(), plane, plane + std::ptrdiff_t{width} * 4);
    }
    void readOther(const char* file) {
        using Pixbuf = std::unique_ptr<GdkPixbuf, void (*)(gpointer)>;
        GError* problem = nullptr;
        const Pixbuf stored(gdk_pixbuf_new_from_file(file, &problem), g_object_unref);
        if (!stored)
            throw std::runtime_error(problem->message);
        if (const char* const value = gdk_pixbuf_get_option(stored.get(), "orientation"))
            orientation = std::atoi(value);
        const Pixbuf whole(gdk_pixbuf_add_alpha(stored.get(), FALSE, 0, 0, 0), g_object_unref);
        take(gdk_pixbuf_get_width(whole.get()), gdk_pixbuf_get_height(whole.get()),
             gdk_pixbuf_get_pixels(whole.get()), gdk_pixbuf_get_rowstride(whole.get()));
    }
    void readTIFF(const char* file) {
        const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(file, "r"), TIFFClose);
        std::uint32_t columns = 0, rows = 0;
        std::uint16_t tag = 1;
        if (!tiff || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &columns) == 0 ||
            TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &rows) == 0)
            throw std::runtime_error("broken TIFF");
        TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_ORIENTATION, &tag);
        orientation = tag;
        // Rows as they are stored: the tag must not turn them, it is judged by itself.
        std::vector<std::uint32_t> raster(std::size_t{columns} * rows);
        if (TIFFReadRGBAImageOriented(tiff.get(), columns, rows, raster.data(), tag, 1) == 0)
            throw std::runtime_error("broken TIFF");
        std::vector<std::uint8_t> straight;
        for (const std::uint32_t packed : raster) {
            const std::uint32_t alpha = TIFFGetA(packed);
            for (const std::uint32_t part : {TIFFGetR(packed), TIFFGetG(packed), TIFFGetB(packed)})
                straight.push_back(static_cast<std::uint8_t>(
                    alpha == 0 ? 0 : std::min(255U, (part * 255 + alpha / 2) / alpha)));
            straight.push_back(static_cast<std::uint8_t>(alpha));
        }
        take(static_cast<int>(columns), static_cast<int>(rows), straight.data(),
             static_cast<int>(columns) * 4);
    }
    void readHEIC(const char* file) {
        const auto must = [](heif_error error) {
            if (error.code != heif_error_Ok)
                throw std::runtime_error(error.message);
        };
        const std::unique_ptr<heif_context, void (*)(heif_context*)> context(heif_context_alloc(),
                                                                             heif_context_free);
        heif_image_handle* handle = nullptr;
        heif_image* image = nullptr;
        must(heif_context_read_from_file(context.get(), file, nullptr));
        must(heif_context_get_primary_image_handle(context.get(), &handle));
        must(heif_decode_image(handle, &image, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                               nullptr));
        constexpr auto all = heif_channel_interleaved;
        int stride = 0;
        const std::uint8_t* const plane = heif_image_get_plane_readonly(image, all, &stride);
        take(heif_image_get_width(image, all), heif_image_get_height(image, all), plane, stride);
        heif_image_release(image);
        heif_image_handle_release(handle);
    }
};
