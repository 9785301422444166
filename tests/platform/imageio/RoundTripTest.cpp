#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/ExactTransforms.h>

namespace zorvan::imageio {
namespace {

bool isLossless(FileFormat format) {
    return format == FileFormat::png || format == FileFormat::tiff;
}

TEST(RoundTrip, EveryFormatGivesThePictureBackWithTheAlphaItHas) {
    for (const FileFormat format : formats)
        for (const auto& [width, height] : {std::pair(1, 1), {17, 13}, {64, 48}, {33, 100}})
            for (const bool hasAlpha : {false, width > 1 && format != FileFormat::jpeg}) {
                SCOPED_TRACE(testing::Message() << typeIdentifier(format) << ' ' << width);
                const Bitmap original = pattern(width, height, hasAlpha);
                const Data bytes = encoded(format, original);
                EXPECT_EQ(ImageReader::open(bytes)->format(), format);
                EXPECT_EQ(number(propertiesOf(bytes), "HasAlpha") == 1, hasAlpha);
                EXPECT_FALSE(propertiesOf(bytes).contains("{Exif}")); // nothing has been said
                EXPECT_LE(difference(decoded(bytes), original).mean, isLossless(format) ? 0 : 6);
            }
    // It is put on white where there is no place for it.
    EXPECT_EQ(componentsAt(decoded(encoded(FileFormat::jpeg, *Bitmap::make(16, 16))), 8, 8),
              (Pixel{255, 255, 255, 255}));
}

TEST(RoundTrip, WhatIsTooLongToBeReadIsNotWritten) {
    for (const FileFormat format : {FileFormat::png, FileFormat::tiff}) {
        const Bitmap tooLong = Bitmap::make(1, 1'000'001).value();
        const Frame frame{&tooLong};
        EXPECT_FALSE(encode(format, {&frame, 1}));
    }
}

TEST(RoundTrip, BothLayoutsAreWrittenAlike) {
    const Bitmap rgba = pattern(20, 10, true), argb = copied(rgba, BitmapLayout::argb).value();
    for (const FileFormat format : formats)
        EXPECT_EQ(encoded(format, rgba), encoded(format, argb)) << typeIdentifier(format);
}

TEST(RoundTrip, MaximumSizeGivesExactlyThatSizeAndTheAverage) {
    const Bitmap original = pattern(400, 301);
    for (const FileFormat format : formats) {
        const Data bytes = encoded(format, original);
        for (const std::int64_t limit : {1, 7, 50, 399, 400, 5000}) {
            SCOPED_TRACE(testing::Message() << typeIdentifier(format) << ' ' << limit);
            const Bitmap small = decoded(bytes, {.maximumPixelSize = limit});
            EXPECT_EQ(small.width(), std::min<std::int64_t>(limit, 400));
            const double height = 301.0 * static_cast<double>(small.width()) / 400;
            EXPECT_NEAR(static_cast<double>(small.height()), height, 0.75);
            const Bitmap expected = referenceDownscale(original, small.width(), small.height());
            EXPECT_LE(difference(small, expected).mean, isLossless(format) ? 0.05 : 5);
        }
    }
}

TEST(RoundTrip, QualityOrdersTheSizes) {
    const Bitmap original = pattern(256, 256);
    for (const FileFormat format : formats) {
        if (isLossless(format))
            continue;
        const auto sizeAt = [&](double quality) {
            const Frame frame = {.bitmap = &original, .quality = quality};
            return encode(format, {&frame, 1}).value_or(Data()).size();
        };
        EXPECT_LT(sizeAt(-3), sizeAt(0.6)) << typeIdentifier(format);
        EXPECT_LT(sizeAt(0.6), sizeAt(1)) << typeIdentifier(format);
        EXPECT_EQ(sizeAt(1), sizeAt(7)) << typeIdentifier(format);
    }
}

TEST(RoundTrip, OnlyTiffHoldsSeveralPictures) {
    const Bitmap first = pattern(30, 20);
    const Bitmap second = pattern(10, 40, true);
    const std::array<Frame, 2> frames = {{{.bitmap = &first}, {.bitmap = &second}}};
    const Frame none;
    for (const FileFormat format : formats) {
        EXPECT_FALSE(encode(format, {}));
        EXPECT_FALSE(encode(format, {&none, 1}));
        EXPECT_EQ(encode(format, frames).has_value(), format == FileFormat::tiff);
    }
    const auto reader = ImageReader::open(encode(FileFormat::tiff, frames).value());
    ASSERT_EQ(reader->count(), 2);
    EXPECT_EQ(difference(reader->decode(1, {}).value(), second).largest, 0);
    EXPECT_EQ(difference(reader->decode(0, {}).value(), first).largest, 0);
    EXPECT_FALSE(reader->decode(2, {}));
    EXPECT_EQ(reader->error(), "the file holds no such picture");
    EXPECT_FALSE(reader->properties(-1));
    EXPECT_TRUE(reader->properties(1));
    EXPECT_EQ(reader->error(), "");
}

TEST(RoundTrip, ReadersOnManyThreadsDoNotDisturbEachOther) {
    std::atomic<int> faults = 0;
    std::vector<std::jthread> threads;
    for (const FileFormat format : formats) {
        const Data whole = encoded(format, pattern(120, 90, true));
        const Data half(whole.begin(), whole.begin() + std::ssize(whole) / 2);
        for (int i = 0; i < 2; ++i)
            threads.emplace_back([&faults, whole, half] {
                for (int round = 0; round < 10; ++round)
                    for (const Data* bytes : {&whole, &half}) {
                        const auto reader = ImageReader::open(*bytes);
                        reader->properties(0);
                        const bool isRead = reader->decode(0, {.maximumPixelSize = 50}).has_value();
                        faults += isRead != (bytes == &whole);
                    }
            });
    }
    threads.clear();
    EXPECT_EQ(faults, 0);
}

} // namespace
} // namespace zorvan::imageio
