#include "PictureFile.h"

#include <cstdio>
#include <cstring>
#include <libexif/exif-data.h>
#include <libheif/heif.h>
#include <memory>
#include <stdexcept>
#include <string>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

PictureFile::PictureFile(const std::filesystem::path& file) {
    const std::string extension = file.extension();
    if (extension == ".png")
        readPNG(file.c_str());
    else if (extension == ".jpg")
        readJPEG(file.c_str());
    else if (extension == ".tiff")
        readTIFF(file.c_str());
    else if (extension == ".heic")
        readHEIC(file.c_str());
    else
        throw std::runtime_error("unknown extension");
}

void PictureFile::resize(std::uint32_t newWidth, std::uint32_t newHeight) {
    width = static_cast<int>(newWidth);
    height = static_cast<int>(newHeight);
    pixels.resize(std::size_t{newWidth} * newHeight * 4);
}

void PictureFile::readPNG(const char* file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file) == 0)
        throw std::runtime_error(image.message);
    image.format = PNG_FORMAT_RGBA;
    resize(image.width, image.height);
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error(image.message);
}

void PictureFile::readJPEG(const char* file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file, "rb"),
                                                                 std::fclose);
    if (!stream)
        throw std::runtime_error("cannot open");
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    errors.error_exit = [](j_common_ptr) { throw std::runtime_error("broken JPEG"); };
    jpeg_create_decompress(&info);
    jpeg_stdio_src(&info, stream.get());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&info);
    resize(info.output_width, info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW line = row(info.output_scanline);
        jpeg_read_scanlines(&info, &line, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    if (ExifData* exif = exif_data_new_from_file(file)) {
        if (const ExifEntry* entry = exif_data_get_entry(exif, EXIF_TAG_ORIENTATION))
            orientation = exif_get_short(entry->data, exif_data_get_byte_order(exif));
        exif_data_unref(exif);
    }
}

void PictureFile::readTIFF(const char* file) {
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(file, "r"), TIFFClose);
    std::uint32_t columns = 0, rows = 0;
    std::uint16_t tag = 1;
    if (!tiff || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &columns) == 0 ||
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &rows) == 0)
        throw std::runtime_error("broken TIFF");
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_ORIENTATION, &tag);
    orientation = tag;
    // Rows as they are stored: the tag must not turn them, it is judged by itself.
    resize(columns, rows);
    std::vector<std::uint32_t> raster(std::size_t{columns} * rows);
    if (TIFFReadRGBAImageOriented(tiff.get(), columns, rows, raster.data(), tag, 1) == 0)
        throw std::runtime_error("broken TIFF");
    for (std::size_t i = 0; i < raster.size(); ++i) {
        const std::uint32_t packed = raster[i], alpha = TIFFGetA(packed);
        const auto straight = [alpha](std::uint32_t value) {
            return static_cast<std::uint8_t>(
                alpha == 0 ? 0 : std::min(255U, (value * 255 + alpha / 2) / alpha));
        };
        const std::uint8_t pixel[] = {straight(TIFFGetR(packed)), straight(TIFFGetG(packed)),
                                      straight(TIFFGetB(packed)), static_cast<std::uint8_t>(alpha)};
        std::memcpy(&pixels[i * 4], pixel, 4);
    }
}

void PictureFile::readHEIC(const char* file) {
    const std::unique_ptr<heif_context, void (*)(heif_context*)> context(heif_context_alloc(),
                                                                         heif_context_free);
    heif_image_handle* handle = nullptr;
    heif_image* image = nullptr;
    const auto must = [](heif_error error) {
        if (error.code != heif_error_Ok)
            throw std::runtime_error(error.message);
    };
    must(heif_context_read_from_file(context.get(), file, nullptr));
    must(heif_context_get_primary_image_handle(context.get(), &handle));
    must(heif_decode_image(handle, &image, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                           nullptr));
    resize(static_cast<std::uint32_t>(heif_image_get_width(image, heif_channel_interleaved)),
           static_cast<std::uint32_t>(heif_image_get_height(image, heif_channel_interleaved)));
    int stride = 0;
    const std::uint8_t* plane =
        heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    for (int y = 0; y < height; ++y)
        std::memcpy(row(static_cast<std::size_t>(y)), plane + std::ptrdiff_t{y} * stride,
                    static_cast<std::size_t>(width) * 4);
    heif_image_release(image);
    heif_image_handle_release(handle);
}
