#include "TestImages.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>
#include <tests/outputOf.h>

#include <zorvan/media/ImageKeys.h>

namespace {

/// What a program of somebody else's reads from the file, one value a line.
std::string readByExiftool(const Data& bytes, const std::string& tags) {
    const TemporaryFolder folder;
    folder.file("picture", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return outputOf("exiftool -n -s3 -f " + tags + " " + folder.url("picture").path());
}

TEST(StoredProperties, AreFoundByAnotherReaderInEveryFormat) {
    const std::string caption = "Été: 雨, \"quoted\"\tand a tab";
    const std::string taken = "2021:03:04 05:06:07", changed = "2022:01:02 03:04:05";
    for (const ImageExportFormat format : ImageExportFormat::allCases)
        for (const std::int64_t orientation : {1, 3, 6, 8}) {
            using Section = PropertyList::Dictionary;
            const Section options = {{kCGImagePropertyOrientation, orientation},
                                     {kCGImagePropertyExifDictionary,
                                      Section{{kCGImagePropertyExifDateTimeOriginal, taken}}},
                                     {kCGImagePropertyTIFFDictionary,
                                      Section{{kCGImagePropertyTIFFImageDescription, caption},
                                              {kCGImagePropertyTIFFDateTime, changed}}}};
            const auto bytes = plain(40, 24, 0xFF4080C0)->data(format, options);
            ASSERT_TRUE(bytes);
            EXPECT_EQ(readByExiftool(*bytes, "-EXIF:Orientation -EXIF:DateTimeOriginal "
                                             "-EXIF:ModifyDate -EXIF:ImageDescription"),
                      std::to_string(orientation) + "\n" + taken + "\n" + changed +
                          "\nÉté: 雨, \"quoted\".and a tab\n")
                << format.pathExtension() << ' ' << orientation;
        }
}

TEST(StoredProperties, AreThoseThatWereAskedForAndAnIptcCaptionForWantOfAnother) {
    const auto picture = plain(8, 8, 0xFF4080C0);
    for (const ImageExportFormat format : ImageExportFormat::allCases)
        EXPECT_EQ(
            readByExiftool(*picture->data(format), "-EXIF:DateTimeOriginal -EXIF:ImageDescription"),
            "-\n-\n");
    PropertyList::Dictionary options = {
        {kCGImagePropertyIPTCDictionary,
         PropertyList::Dictionary{{kCGImagePropertyIPTCCaptionAbstract, "From IPTC"}}}};
    const auto description = [&] {
        return readByExiftool(*picture->data(ImageExportFormat::jpg, options),
                              "-EXIF:ImageDescription");
    };
    EXPECT_EQ(description(), "From IPTC\n");
    options.emplace(kCGImagePropertyTIFFDictionary,
                    PropertyList::Dictionary{{kCGImagePropertyTIFFImageDescription, "From TIFF"}});
    EXPECT_EQ(description(), "From TIFF\n");
}

} // namespace
