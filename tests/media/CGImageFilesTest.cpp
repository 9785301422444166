#include "TestImages.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/media/Date.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/ImageThumbailer.h>

namespace {

PropertyList::Dictionary options(std::string_view key, PropertyList value) {
    return {{std::string(key), std::move(value)}};
}

/// An opaque picture without a symmetry: dark at the bottom, red growing to the right.
CGImage::Pointer slope(std::int64_t width, std::int64_t height) {
    Bitmap bitmap = Bitmap::make(width, height).value();
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            std::uint8_t* const pixel = bitmap.row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x * 255 / width);
            pixel[1] = static_cast<std::uint8_t>((height - y) * 255 / height);
            pixel[3] = 255;
        }
    return CGImage::create(std::move(bitmap));
}

TEST(CGImageMetadata, SizesComeFromIntegersOnly) {
    const auto metadata = [](PropertyList width, PropertyList height, PropertyList orientation) {
        return PropertyList::Dictionary{{kCGImagePropertyPixelWidth, std::move(width)},
                                        {kCGImagePropertyPixelHeight, std::move(height)},
                                        {kCGImagePropertyOrientation, std::move(orientation)}};
    };
    for (int value = -1; value <= 10; ++value)
        EXPECT_EQ(CGImage::orientedImageSize(metadata(4000, 3000, value)),
                  value >= 5 && value <= 8 ? CGSize(3000, 4000) : CGSize(4000, 3000));
    EXPECT_EQ(CGImage::orientedImageSize(metadata(4000, 3000, 6.0)), CGSize(4000, 3000));
    EXPECT_FALSE(CGImage::imageSize(metadata(4000, "3000", 1)));
    EXPECT_FALSE(CGImage::orientedImageSize(options(kCGImagePropertyPixelWidth, 4000)));
}

TEST(CGImageMetadata, TellsWhenAPictureWasTaken) {
    const Date noon(std::chrono::sys_days(std::chrono::year(2023) / 7 / 1) +
                    std::chrono::hours(12));
    const std::string local = UTCFormatted(noon);
    const std::chrono::milliseconds quarter(250);
    for (const auto& [exif, expected] :
         std::vector<std::pair<PropertyList::Dictionary, std::optional<Date>>>{
             {{}, {}},
             {{{"DateTimeOriginal", local}, {"DateTimeDigitized", "2001:01:01 00:00:00"}}, noon},
             {{{"DateTimeOriginal", "    :  :     :  :  "}, {"DateTimeDigitized", local}}, noon},
             {{{"DateTimeOriginal", local}, {"SubsecTimeOriginal", "25"}}, noon + quarter},
             {{{"DateTimeOriginal", local},
               {"SubsecTimeOriginal", "x"},
               {"OffsetTimeOriginal", "   :  "}},
              noon},
             {{{"DateTimeOriginal", local}, {"SubsecTimeDigitized", "25"}}, noon},
             {{{"DateTimeOriginal", "2023:07:01 10:00:00"},
               {"OffsetTimeOriginal", "-02:00"},
               {"SubsecTimeOriginal", "250"}},
              noon + quarter},
             {{{"DateTimeOriginal", "2023:13:01 10:00:00"}}, {}}})
        EXPECT_EQ(CGImage::creationDate(options(kCGImagePropertyExifDictionary, exif)), expected);
}

TEST(CGImageMetadata, TellsWhereAPictureWasTaken) {
    const auto locationOf = [](PropertyList latitude, const char* north, PropertyList longitude,
                               const char* east) {
        return CGImage::location(
            options(kCGImagePropertyGPSDictionary,
                    PropertyList::Dictionary{{"Latitude", std::move(latitude)},
                                             {"LatitudeRef", north},
                                             {"Longitude", std::move(longitude)},
                                             {"LongitudeRef", east}}));
    };
    EXPECT_EQ(locationOf(33.5, "S", 70.25, "W"), (Location{-33.5, -70.25}));
    EXPECT_EQ(locationOf(90, "N", 180, "E"), (Location{90, 180}));
    for (const PropertyList& latitude :
         {PropertyList(90.5), PropertyList(std::nan("")), PropertyList("1")})
        EXPECT_FALSE(locationOf(latitude, "N", 0, "E"));
    EXPECT_FALSE(locationOf(0, "N", 180.5, "E"));
    EXPECT_FALSE(CGImage::location(PropertyList::Dictionary()));
}

TEST(CGImageMetadata, OfAnUprightCopyKeepsDateAndPlaceAndDoesNotTurnItAgain) {
    const PropertyList::Dictionary told = {
        {"{TIFF}", PropertyList::Dictionary{{"Model", "camera"}}},
        {"{Exif}", PropertyList::Dictionary{{"DateTimeOriginal", "2023:07:01 12:00:00"}}},
        {"{GPS}", PropertyList::Dictionary{{"Latitude", 33.5}, {"Longitude", 70.25}}}};
    for (const ImageExportFormat format : ImageExportFormat::allCases)
        for (const int orientation : {1, 3, 6}) {
            PropertyList::Dictionary properties = told;
            properties.emplace(kCGImagePropertyOrientation, orientation);
            const Data original = slope(30, 20)->data(format, properties).value();
            const auto metadata = CGImage::uprightMetadata(CGImage::metadata(original).value());
            const auto upright = ImageThumbailer().thumbnail(original);
            EXPECT_EQ(CGImage::imageSize(metadata), upright->size());
            for (const ImageExportFormat other : ImageExportFormat::allCases) {
                const auto copy = CGImage::metadata(upright->data(other, metadata).value());
                SCOPED_TRACE(testing::Message() << format.displayName() << other.displayName());
                EXPECT_EQ(CGImage::orientedImageSize(copy), upright->size());
                EXPECT_EQ(CGImage::location(copy), (Location{33.5, 70.25}));
                EXPECT_EQ(CGImage::creationDate(copy), CGImage::creationDate(told));
                const auto* tiff = copy->at("{TIFF}").as<PropertyList::Dictionary>();
                EXPECT_EQ(tiff->at("Model"), PropertyList("camera"));
                EXPECT_TRUE(!tiff->contains("Orientation") ||
                            tiff->at("Orientation") == PropertyList(1));
            }
        }
}

TEST(ImageThumbailer, HasItsDefaultsAndFiveOptions) {
    EXPECT_EQ(ImageThumbailer(), (ImageThumbailer{true, 1000000, true}));
    const PropertyList::Dictionary expected{{"kCGImageSourceShouldCache", false},
                                            {"kCGImageSourceShouldAllowFloat", true},
                                            {"kCGImageSourceCreateThumbnailWithTransform", false},
                                            {"kCGImageSourceCreateThumbnailFromImageAlways", true},
                                            {"kCGImageSourceThumbnailMaxPixelSize", 256.0}};
    const auto dictionary =
        ImageThumbailer{.applyExifTransform = false, .maximumPixelSize = 256}.coreImageDictionary();
    EXPECT_EQ(dictionary, expected);
    EXPECT_TRUE(dictionary.at("kCGImageSourceThumbnailMaxPixelSize").as<NSNumber>()->isReal());
}

TEST(CGImageEncoding, KeepsWhatTheFormatAndItsOptionsKeep) {
    const auto opaque = slope(33, 21);
    for (const auto& bytes : {opaque->argbDrawnCopy()->pngData(), opaque->tiffData()})
        EXPECT_TRUE(haveSamePixels(*CGImage::image(bytes.value()), *opaque));
    const auto best = opaque->jpegData(1);
    EXPECT_LT(meanDifference(*CGImage::image(best.value()), *opaque), 2);
    EXPECT_EQ(opaque->data(ImageExportFormat::jpg), best);
    EXPECT_LT(opaque->jpegData(0.2)->size(), best->size());
    EXPECT_EQ(opaque->data(ImageExportFormat::tiff), opaque->tiffData());
    EXPECT_LT(opaque->tiffData()->size(), opaque->data(ImageExportFormat::tiff, {})->size());
    EXPECT_EQ(opaque->data(ImageExportFormat::png), opaque->pngData());
}

TEST(CGImageDestination, WritesThePicturesThatWereAnnounced) {
    const auto data = std::make_shared<Data>(3, std::byte{42});
    EXPECT_EQ(CGImageDestination::create(data, "public.text", 1), nullptr);
    EXPECT_EQ(CGImageDestination::create(data, "public.png", 0), nullptr);
    EXPECT_EQ(CGImageDestination::create(std::shared_ptr<Data>(), "public.png", 1), nullptr);
    EXPECT_EQ(CGImageDestination::create(*URL::make({.string = "http://a/b.png"}), "public.png", 1),
              nullptr);
    const auto turned = [](int value) { return options(kCGImagePropertyOrientation, value); };
    const auto destination = CGImageDestination::create(data, "public.tiff", 2, turned(3));
    destination->setProperties(turned(8));
    destination->addImage(slope(8, 6), turned(6));
    destination->addImage(slope(5, 9));
    destination->addImage(slope(1, 1)); // one too many
    EXPECT_TRUE(destination->finalize());
    EXPECT_FALSE(destination->finalize());
    ASSERT_GT(data->size(), 3u);
    const auto source = CGImageSource::create(Data(data->begin() + 3, data->end()));
    EXPECT_EQ(source->type(), "public.tiff");
    ASSERT_EQ(source->count(), 2);
    EXPECT_TRUE(haveSamePixels(*source->image(1), *slope(5, 9)));
    // The options of the picture go first, then those of the file.
    EXPECT_EQ(source->properties(0)->at("Orientation"), PropertyList(6));
    EXPECT_EQ(source->properties(1)->at("Orientation"), PropertyList(8));

    const auto unfinished = CGImageDestination::create(data, "public.tiff", 2);
    const std::size_t before = data->size();
    unfinished->addImage(slope(8, 6));
    unfinished->addImage(nullptr);
    EXPECT_FALSE(unfinished->finalize());
    EXPECT_EQ(data->size(), before);
}

TEST(CGImageDestination, ReplacesAFileThroughALinkAndNothingElse) {
    const TemporaryFolder folder;
    const auto writes = [&](const char* name, const CGImage::Pointer& image) {
        const auto destination = CGImageDestination::create(folder.url(name), "public.png", 1);
        destination->addImage(image);
        return destination->finalize();
    };
    folder.file("real.png", "before");
    folder.setMode("real.png", 0600);
    folder.link("link.png", "real.png");
    EXPECT_FALSE(writes("real.png", nullptr));
    EXPECT_EQ(text(folder.path() / "real.png"), "before");
    EXPECT_TRUE(writes("link.png", slope(4, 4)));
    EXPECT_TRUE(fs::is_symlink(folder.path() / "link.png"));
    EXPECT_TRUE(haveSamePixels(*CGImage::image(folder.url("real.png")), *slope(4, 4)));
    EXPECT_EQ(fs::status(folder.path() / "real.png").permissions(), fs::perms(0600));
    EXPECT_FALSE(writes("none/a.png", slope(4, 4)));
    EXPECT_EQ(folder.count(), 2); // and nothing of ours beside them
}

TEST(CGImageLoading, WhatIsNoPictureGivesNothing) {
    for (const URL& url :
         {URL({.fileURLWithPath = "/missing.png"}), *URL::make({.string = "http://host/a.png"})}) {
        EXPECT_EQ(CGImage::image(url), nullptr);
        EXPECT_EQ(CGImage::thumbnail(url), nullptr);
        EXPECT_EQ(ImageThumbailer().thumbnail(url), nullptr);
        EXPECT_FALSE(CGImage::imageSize(url));
        EXPECT_FALSE(CGImage::orientedImageSize(url));
        EXPECT_FALSE(CGImage::creationDate(url));
        EXPECT_FALSE(CGImage::location(url));
    }
    EXPECT_FALSE(CGImageSource::create(Data())->type());
}

/// A JPEG of 300 x 200 pixels that is to be turned by `orientation`.
Data orientedPicture(int orientation) {
    return slope(300, 200)
        ->data(ImageExportFormat::jpg, options(kCGImagePropertyOrientation, orientation))
        .value();
}

TEST(CGImageThumbnails, AreUprightUnlessAskedNotToBe) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Data picture = orientedPicture(orientation);
        const auto upright = ImageThumbailer{.maximumPixelSize = 90}.thumbnail(picture);
        EXPECT_EQ(upright->width(), orientation >= 5 ? 60 : 90);
        const auto expected =
            slope(300, 200)->resizing({90, 60})->oriented(std::int64_t{orientation});
        EXPECT_LT(meanDifference(*upright, *expected), 4) << orientation;
        const auto stored =
            ImageThumbailer{.applyExifTransform = false, .maximumPixelSize = 90}.thumbnail(picture);
        EXPECT_LT(meanDifference(*stored, *slope(300, 200)->resizing({90, 60})), 4);
    }
}

TEST(CGImageThumbnails, AreNoLargerThanAskedAndNeverEnlarged) {
    const Data picture = orientedPicture(1);
    for (const auto& [limit, size] : {std::pair(1000000.0, CGSize(300, 200)),
                                      {1e300, {300, 200}},
                                      {300, {300, 200}},
                                      {299.9, {299, 199}},
                                      {1, {1, 1}},
                                      {0.3, {1, 1}}}) {
        const auto thumbnail = ImageThumbailer{.maximumPixelSize = limit}.thumbnail(picture);
        EXPECT_EQ(thumbnail->size(), size) << limit;
    }
    const auto source = CGImageSource::create(picture);
    for (const auto& [thumbnailer, index, error] :
         {std::tuple(ImageThumbailer{.maximumPixelSize = 90}, 0, ""),
          {ImageThumbailer{.maximumPixelSize = 0}, 0, "a thumbnail of no size was asked for"},
          {ImageThumbailer{.maximumPixelSize = NAN}, 0, "a thumbnail of no size was asked for"},
          {ImageThumbailer{.alwaysCreateImage = false}, 0, "the file holds no thumbnail"},
          {ImageThumbailer(), 1, "the file holds no such picture"},
          {ImageThumbailer(), -1, "the file holds no such picture"}}) {
        EXPECT_EQ(thumbnailer.thumbnail(*source, index) != nullptr, error == std::string());
        EXPECT_EQ(source->error(), error);
    }
    // Where the file has none, one is made only when it is asked for.
    EXPECT_EQ(CGImage::thumbnail(picture), nullptr);
    const auto made =
        CGImage::thumbnail(picture, options(kCGImageSourceCreateThumbnailFromImageIfAbsent, true));
    EXPECT_EQ(made->width(), 300);
}

TEST(CGImageThumbnails, AreThoseOfTheFileUnlessTheyAreToBeMade) {
    const URL url({.fileURLWithPath = SAMPLES "/embedded-thumbnail.jpg"}); // 120 x 80 of 360 x 240
    const auto sizeOf = [](const CGImage::Pointer& made) { return made ? made->size() : CGSize(); };
    EXPECT_EQ(sizeOf(CGImage::thumbnail(url)), CGSize(120, 80));
    EXPECT_EQ(
        sizeOf(ImageThumbailer{.maximumPixelSize = 60, .alwaysCreateImage = false}.thumbnail(url)),
        CGSize(60, 40));
    EXPECT_EQ(sizeOf(ImageThumbailer{.maximumPixelSize = 240}.thumbnail(url)), CGSize(240, 160));
}

} // namespace
