#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/Iptc.h>

namespace zorvan::imageio {
namespace {

/// What a camera says of a picture, with values that come back as they are.
PropertyList::Dictionary cameraProperties() {
    const PropertyList::Dictionary exif = {
        {"ExposureTime", 1.0 / 250},
        {"FNumber", 2.8},
        {"ExposureProgram", 2},
        {"ISOSpeedRatings", PropertyList::Array{200}},
        {"ExifVersion", PropertyList::Array{2, 3, 1}},
        {"DateTimeOriginal", "2023:01:02 03:04:05"},
        {"OffsetTimeOriginal", "+02:00"},
        {"SubsecTimeOriginal", "250"},
        {"ExposureBiasValue", -1.0 / 3},
        {"Flash", 16},
        {"FocalLength", 35.5},
        {"SubjectDistance", std::numeric_limits<double>::infinity()},
        {"UserComment", "by the lake"},
        {"SceneType", 1},
        {"FocalLengthIn35mmFilm", 53},
        {"BodySerialNumber", "12345"},
        {"LensSpecification", PropertyList::Array{24.0, 70.0, 2.8, 4.0}},
        {"LensMake", "Maker"},
        {"LensModel", "Model"}};
    const PropertyList::Dictionary gps = {{"GPSVersion", PropertyList::Array{2, 3, 0, 0}},
                                          {"LatitudeRef", "S"},
                                          {"Latitude", 33.5},
                                          {"LongitudeRef", "W"},
                                          {"Longitude", 70.25},
                                          {"AltitudeRef", 0},
                                          {"Altitude", 521.5},
                                          {"TimeStamp", "01:04:05"},
                                          {"ImgDirection", 12.25},
                                          {"MapDatum", "WGS-84"},
                                          {"DateStamp", "2023:01:02"}};
    const PropertyList::Dictionary tiff = {{"ImageDescription", "Zwei Möwen"},
                                           {"DateTime", "2024:05:06 07:08:09"},
                                           {"Artist", "A"},
                                           {"Orientation", 5}};
    return {{"{Exif}", exif}, {"{GPS}", gps}, {"{TIFF}", tiff}};
}

TEST(Metadata, WhatIsWrittenIsTheSameInEveryFormat) {
    const PropertyList::Dictionary camera = cameraProperties();
    PropertyList::Dictionary written = camera;
    written.at("{TIFF}").as<PropertyList::Dictionary>()->emplace("Make", "");
    written.merge(PropertyList::Dictionary{{"DPIWidth", 300}, {"DPIHeight", 150}});
    for (const FileFormat format : formats) {
        SCOPED_TRACE(typeIdentifier(format));
        const auto read = propertiesOf(encoded(format, pattern(21, 9), written));
        EXPECT_EQ(number(read, "Orientation"), 5);
        EXPECT_EQ(text(read, "{TIFF}", "Make"), "(none)");
        for (const auto& [name, wanted] : camera) {
            ASSERT_TRUE(read.contains(name));
            const auto& found = *read.at(name).as<PropertyList::Dictionary>();
            for (const auto& [key, value] : *wanted.as<PropertyList::Dictionary>())
                EXPECT_TRUE(found.contains(key) && found.at(key) == value) << key;
        }
        if (format == FileFormat::heic)
            continue; // has no place for a resolution
        EXPECT_NEAR(number(read, "DPIWidth"), 300, 0.02);
        EXPECT_NEAR(number(read, "DPIHeight"), 150, 0.02);
    }
}

TEST(Metadata, ValuesOfAnotherKindThanTheirFieldsAreLeftOut) {
    const double infinity = std::numeric_limits<double>::infinity();
    const PropertyList::Dictionary exif = {{"ExposureTime", "short"},
                                           {"FNumber", -1.0},
                                           {"SubjectDistance", -infinity},
                                           {"ApertureValue", infinity},
                                           {"ExposureBiasValue", std::nan("")},
                                           {"Flash", 65'536},
                                           {"MeteringMode", -1},
                                           {"ISOSpeedRatings", PropertyList::Array{100, "many"}},
                                           {"LensSpecification", PropertyList::Array(17, 1.0)},
                                           {"ExifVersion", PropertyList::Array{2, 10}},
                                           {"UserComment", ""},
                                           {"LensModel", 7},
                                           {"FocalLength", 50}};
    const PropertyList::Dictionary gps = {
        {"Latitude", -1.0}, {"Longitude", infinity}, {"TimeStamp", "1:2:3"}, {"AltitudeRef", 256}};
    for (const FileFormat format : formats) {
        const auto read = propertiesOf(
            encoded(format, pattern(9, 9), {{"Orientation", 9}, {"{Exif}", exif}, {"{GPS}", gps}}));
        EXPECT_EQ(number(read, "Orientation"), format == FileFormat::tiff ? 1 : -1);
        EXPECT_EQ(read.count("{GPS}"), 0U) << typeIdentifier(format);
        EXPECT_EQ(read.at("{Exif}"), PropertyList(PropertyList::Dictionary{{"FocalLength", 50}}));
    }
}

TEST(Metadata, ADirectoryOfATiffIsReadInEveryForm) {
    for (const bool bigEndian : {false, true})
        for (const bool wide : {false, true}) {
            Data file(16);
            std::array<TiffEntry, 2> entries = {
                {{0x9209, TiffEntry::shortNumber, 1, {}}, {0xA434, TiffEntry::ascii, 10, {}}}};
            appendNumber(entries[0].value, 16, 2, bigEndian);
            entries[1].value = bytesOf(std::string_view("some lens\0", 10));
            const TiffForm form = {bigEndian, wide};
            appendTiffDirectory(file, entries, form);
            for (std::size_t length = file.size() + 1; length-- > 0;) {
                const auto source = sourceOver(
                    Data(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
                PropertyList::Dictionary read;
                addExifProperties(exifBlockFrom(*source, form, {.exif = 16}), read);
                const bool isWhole = length == file.size();
                EXPECT_EQ(text(read, "{Exif}", "LensModel"), isWhole ? "some lens" : "(none)");
                EXPECT_TRUE(!isWhole || number(read, "{Exif}", "Flash") == 16);
            }
        }
}

TEST(Metadata, LongTextsAreShortenedNotRefused) {
    std::string longText;
    while (longText.size() < 100'000)
        longText += "ö";
    const auto read = propertiesOf(encoded(
        FileFormat::jpeg, pattern(8, 8),
        {{"{TIFF}", PropertyList::Dictionary{{"ImageDescription", longText}, {"Model", "M"}}}}));
    const std::string kept = text(read, "{TIFF}", "ImageDescription");
    EXPECT_TRUE(kept.size() > 1000 && longText.starts_with(kept));
    EXPECT_EQ(text(read, "{TIFF}", "Model"), "M");
}

TEST(Metadata, NumbersOfEverySizeAndSignAreReadOneAfterAnother) {
    for (const bool bigEndian : {false, true})
        for (const auto& [type, width] : {std::pair(6, 1), {8, 2}, {9, 4}}) { // signed ones
            TiffEntry entry = {0x9214, static_cast<std::uint16_t>(type), 3, {}};
            for (const int value : {-2, 3, -100})
                appendNumber(entry.value, static_cast<std::uint64_t>(value),
                             static_cast<std::size_t>(width), bigEndian);
            PropertyList::Dictionary read;
            addExifProperties(exifBlockOf({}, {&entry, 1}, {}, bigEndian), read);
            EXPECT_EQ(read.at("{Exif}"), PropertyList(PropertyList::Dictionary{
                                             {"SubjectArea", PropertyList::Array{-2, 3, -100}}}))
                << type;
        }
}

TEST(Metadata, CommentsInUTF16AreReadInEitherByteOrder) {
    for (const bool bigEndian : {false, true})
        for (const bool hasMark : {false, true}) {
            TiffEntry entry = {0x9286, TiffEntry::undefined, 0,
                               bytesOf(std::string_view("UNICODE\0", 8))};
            const bool isOther = hasMark && !bigEndian; // a mark goes before the block's order
            for (const int unit : {0xFEFF, 0x68, 0xF6, 0xD83C, 0xDF0A, 0})
                if (unit != 0xFEFF || hasMark)
                    appendNumber(entry.value, static_cast<std::uint64_t>(unit), 2,
                                 bigEndian != isOther);
            entry.count = static_cast<std::uint32_t>(entry.value.size());
            PropertyList::Dictionary read;
            addExifProperties(exifBlockOf({}, {&entry, 1}, {}, bigEndian), read);
            EXPECT_EQ(text(read, "{Exif}", "UserComment"), "hö\U0001F30A") << bigEndian << hasMark;
        }
}

/// A block in either byte order with the orientation as its only entry.
Data orientationBlock(bool little, TiffEntry::Type type, int value) {
    TiffEntry entry = {0x112, type, 1, {}};
    appendNumber(entry.value, static_cast<std::uint64_t>(value),
                 type == TiffEntry::shortNumber ? 2 : 4, !little);
    return exifBlockOf({entry}, {}, {}, !little);
}

TEST(Metadata, OrientationIsReadInEveryForm) {
    for (const bool little : {false, true})
        for (const auto type : {TiffEntry::shortNumber, TiffEntry::longNumber}) {
            for (int value = 1; value <= 8; ++value)
                EXPECT_EQ(exifOrientation(orientationBlock(little, type, value)), value);
            for (const int value : {0, 9, 255, 257, 65535})
                EXPECT_FALSE(exifOrientation(orientationBlock(little, type, value)));
        }
    const Data block = orientationBlock(true, TiffEntry::shortNumber, 6);
    for (std::size_t length = 0; length < 22; ++length)
        EXPECT_FALSE(exifOrientation(Bytes(block).first(length))) << length;
    EXPECT_EQ(exifOrientation(Bytes(block).first(22)), 6); // broken behind the entry
}

TEST(Metadata, TheThumbnailInsideExifIsDecoded) {
    const Data thumbnail = encoded(FileFormat::jpeg, pattern(16, 12));
    Data block = orientationBlock(true, TiffEntry::shortNumber, 6);
    block.erase(block.end() - 4, block.end()); // the place of the next directory
    appendNumber(block, block.size() + 4, 4, false);
    std::array<TiffEntry, 3> entries = {{{0x103, TiffEntry::shortNumber, 1, {}},
                                         {0x201, TiffEntry::longNumber, 1, {}},
                                         {0x202, TiffEntry::longNumber, 1, {}}}};
    appendNumber(entries[0].value, 6, 2, false);
    appendNumber(entries[1].value, block.size() + 2 + 3 * 12 + 4, 4, false);
    appendNumber(entries[2].value, thumbnail.size(), 4, false);
    appendTiffDirectory(block, entries, {});
    block.insert(block.end(), thumbnail.begin(), thumbnail.end());
    const Data picture = encoded(FileFormat::jpeg, pattern(64, 48));
    const Data bytes = withSegment(picture, 0xE1, withExifSignature(block));
    const auto reader = ImageReader::open(bytes);
    const auto found = reader->embeddedThumbnail(0);
    ASSERT_TRUE(found) << reader->error();
    EXPECT_LE(difference(*found, pattern(16, 12)).mean, 6);
    EXPECT_EQ(number(propertiesOf(bytes), "Orientation"), 6);
    EXPECT_FALSE(ImageReader::open(picture)->embeddedThumbnail(0));
}

TEST(Metadata, IptcFieldsAreReadFromPhotoshopResources) {
    using namespace std::string_view_literals;
    const Data block = bytesOf("Photoshop 3.0\0"
                               "8BIM\x03\xED\0\0\0\0\0\x02zz"
                               "8BIM\x04\x04\0\0\0\0\0\x1E"
                               "\x1C\x02\x78\0\x07"
                               "Caption"
                               "\x1C\x02\x19\0\x03one"
                               "\x1C\x02\x19\0\x05three"sv);
    // Behind a segment as long as one may be, in which an end seems to stand.
    Data longest(0xFFFD, std::byte{0xD9});
    longest[0x9000] = std::byte{0xFF};
    const auto pictureWith = [&](Bytes part) {
        const Data picture = withSegment(encoded(FileFormat::jpeg, pattern(9, 9)), 0xED, part);
        return withSegment(picture, 0xE5, longest);
    };
    EXPECT_EQ(decoded(pictureWith(block)).width(), 9);
    for (std::size_t length = 0; length < block.size(); ++length)
        EXPECT_FALSE(propertiesOf(pictureWith(Bytes(block).first(length))).contains("{IPTC}"));
    const PropertyList::Dictionary iptc = {{"Caption/Abstract", "Caption"},
                                           {"Keywords", PropertyList::Array{"one", "three"}}};
    EXPECT_EQ(propertiesOf(pictureWith(block)).at("{IPTC}"), PropertyList(iptc));
    PropertyList::Dictionary direct;
    addPhotoshopProperties(block, direct);
    EXPECT_EQ(direct.at("{IPTC}"), PropertyList(iptc));
}

} // namespace
} // namespace zorvan::imageio
