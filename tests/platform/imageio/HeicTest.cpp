#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/imageio/internal/HeifTransforms.h>

namespace zorvan::imageio {
namespace {

/// Puts another name in the place of a box, so that nobody knows it.
void rename(Data& bytes, std::string_view box) { bytes[positionOf(bytes, box)] = std::byte{'x'}; }

/// The orientation's place in the Exif block that the writer makes: its first entry's value.
void setExifOrientation(Data& bytes, int orientation) {
    bytes[positionOf(bytes, std::string_view("II*\0", 4)) + 18] =
        static_cast<std::byte>(orientation);
}

/// The picture comes back from the file as it is stored, not turned.
void expectStored(const Data& bytes, const Bitmap& original, int orientation) {
    SCOPED_TRACE(testing::Message() << original.width() << ' ' << orientation);
    const auto properties = propertiesOf(bytes);
    EXPECT_EQ(number(properties, "Orientation"), orientation);
    EXPECT_EQ(number(properties, "PixelWidth"), original.width());
    EXPECT_EQ(number(properties, "PixelHeight"), original.height());
    EXPECT_LE(difference(decoded(bytes), original).mean, 7);
}

TEST(Heic, EverySizeAndOrientationIsStoredAndNotApplied) {
    // The codec pads to even sides, and the file's crop takes the padding off again.
    for (const auto& [width, height] : {std::pair(80, 64), {63, 41}, {1, 1}, {100, 37}})
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const Bitmap original = pattern(width, height, width != 80);
            expectStored(encoded(FileFormat::heic, original, {{"Orientation", orientation}}),
                         original, orientation);
        }
}

TEST(Heic, TheFilesOwnTurnHoldsAgainstExif) {
    Data both = encoded(FileFormat::heic, pattern(80, 64), {{"Orientation", 6}});
    setExifOrientation(both, 3);
    const auto properties = propertiesOf(both);
    EXPECT_EQ(number(properties, "Orientation"), 6);
    EXPECT_EQ(number(properties, "{TIFF}", "Orientation"), 6);
    Data turnOnly = both;
    rename(turnOnly, "Exif");
    EXPECT_EQ(number(propertiesOf(turnOnly), "Orientation"), 6);
    EXPECT_FALSE(propertiesOf(turnOnly).contains("{TIFF}"));
    rename(both, "irot");
    EXPECT_EQ(number(propertiesOf(both), "Orientation"), 3);
}

TEST(Heic, ASizeStatedAfterTheTurnIsTakenForTheOneBefore) {
    const Bitmap original = pattern(80, 64);
    Data bytes = encoded(FileFormat::heic, original, {{"Orientation", 6}});
    const std::size_t size = positionOf(bytes, "ispe") + 8;
    std::swap_ranges(&bytes[size], &bytes[size + 4], &bytes[size + 4]);
    expectStored(bytes, original, 6);
}

// Some versions of the codec's library refuse that.
TEST(Heic, ASizeStatedSmallerThanCodedIsACropOrDamage) {
    const Bitmap original = pattern(80, 64);
    Data bytes = encoded(FileFormat::heic, original);
    bytes[positionOf(bytes, "ispe") + 11] = std::byte{72};
    if (const std::string error = errorOf(bytes); !error.empty())
        EXPECT_EQ(error, "the file is damaged");
    else
        EXPECT_LE(difference(decoded(bytes), cropped(original, {0, 0, 72, 64}).value()).mean, 7);
}

TEST(HeifTransforms, ACropOfAnUprightOrMirroredPictureIsCountedFromItsCorner) {
    HeifTransforms transforms({40, 30});
    transforms.keep({4, 3, 30, 20});
    EXPECT_EQ(transforms.crop(), (PixelRect{4, 3, 30, 20}));
    transforms.mirror(true);
    transforms.keep({1, 2, 9, 8});
    EXPECT_EQ(transforms.crop(), (PixelRect{24, 5, 9, 8}));
}

TEST(HeifTransforms, ACropAfterATurnIsCountedInTheTurnedPicture) {
    HeifTransforms transforms({40, 30});
    transforms.rotate(1); // what was at the right is on top
    EXPECT_EQ(transforms.size(), (PixelSize{30, 40}));
    transforms.keep({0, 0, 30, 10});
    EXPECT_EQ(transforms.crop(), (PixelRect{30, 0, 10, 30}));
    EXPECT_EQ(transforms.size(), (PixelSize{30, 10}));
    transforms.keep({5, 2, 100, 100});
    EXPECT_EQ(transforms.crop(), (PixelRect{30, 5, 8, 25}));
    transforms.keep({-100, 500, 3, 3});
    EXPECT_GE(transforms.crop().width, 1);
    EXPECT_GE(transforms.crop().height, 1);
    EXPECT_EQ(transforms.orientation(), 8);
    transforms.mirror(true);
    EXPECT_EQ(transforms.orientation(), 7);
    transforms.rotate(1);
    EXPECT_EQ(transforms.orientation(), 2);
}

} // namespace
} // namespace zorvan::imageio
