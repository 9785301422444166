#include "TestImages.h"

#include <zorvan/media/ImageKeys.h>
#include <zorvan/platform/foundation/UUID.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

namespace zorvan {
namespace {

/// What a program of somebody else's reads from the file, one value a line.
std::string readByExiftool(const Data& bytes, const std::string& tags) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("stored-" + makeUUIDString());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    const std::string command = "exiftool -n -s3 -f " + tags + " '" + file.string() + "' 2>&1";
    std::string output;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    char buffer[512];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe.get()))
        output += buffer;
    std::filesystem::remove(file);
    return output;
}

PropertyList::Dictionary section(std::string_view key, std::string_view name, PropertyList value) {
    PropertyList::Dictionary inner;
    inner.emplace(name, std::move(value));
    return {{std::string(key), std::move(inner)}};
}

constexpr ImageExportFormat formats[] = {ImageExportFormat::png, ImageExportFormat::jpg,
                                         ImageExportFormat::tiff, ImageExportFormat::heic};

TEST(StoredProperties, AreFoundByAnotherReaderInEveryFormat) {
    const std::string caption = "Été: 雨, \"quoted\"\tand a tab";
    const std::string taken = "2021:03:04 05:06:07", changed = "2022:01:02 03:04:05";
    for (const ImageExportFormat format : formats)
        for (const std::int64_t orientation : {1, 3, 6, 8}) {
            PropertyList::Dictionary options = section(kCGImagePropertyExifDictionary,
                                                       kCGImagePropertyExifDateTimeOriginal, taken);
            options.emplace(kCGImagePropertyOrientation, orientation);
            PropertyList::Dictionary tiff;
            tiff.emplace(kCGImagePropertyTIFFImageDescription, caption);
            tiff.emplace(kCGImagePropertyTIFFDateTime, changed);
            options.emplace(kCGImagePropertyTIFFDictionary, tiff);
            const auto bytes = plain(40, 24, 0xFF4080C0)->data(format, options);
            ASSERT_TRUE(bytes);
            EXPECT_EQ(readByExiftool(*bytes, "-EXIF:Orientation -EXIF:DateTimeOriginal "
                                             "-EXIF:ModifyDate -EXIF:ImageDescription"),
                      std::to_string(orientation) + "\n" + taken + "\n" + changed +
                          "\nÉté: 雨, \"quoted\".and a tab\n")
                << format.pathExtension() << ' ' << orientation;
        }
}

TEST(StoredProperties, AnIptcCaptionIsADescriptionWhenThereIsNoOther) {
    PropertyList::Dictionary options =
        section(kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCCaptionAbstract, "From IPTC");
    const auto first = plain(8, 8, 0xFF4080C0)->data(ImageExportFormat::jpg, options);
    EXPECT_EQ(readByExiftool(*first, "-EXIF:ImageDescription"), "From IPTC\n");
    options.merge(
        section(kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFImageDescription, "From TIFF"));
    const auto second = plain(8, 8, 0xFF4080C0)->data(ImageExportFormat::jpg, options);
    EXPECT_EQ(readByExiftool(*second, "-EXIF:ImageDescription"), "From TIFF\n");
}

TEST(StoredProperties, NothingIsStoredThatWasNotAskedFor) {
    for (const ImageExportFormat format : formats)
        EXPECT_EQ(readByExiftool(*plain(8, 8, 0xFF4080C0)->data(format),
                                 "-EXIF:DateTimeOriginal -EXIF:ImageDescription"),
                  "-\n-\n");
}

} // namespace
} // namespace zorvan
