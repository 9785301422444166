#include <tests/Testing.h>

#include <zorvan/media/ExifOrientation.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/RenamedExifOrientation.h>

namespace {

TEST(ImageExportFormat, IsFoundByRawValueAndByExtension) {
    EXPECT_EQ(ImageExportFormat::make({.rawValue = 1}), ImageExportFormat::png);
    EXPECT_EQ(ImageExportFormat::make({.rawValue = 4}), ImageExportFormat::heic);
    for (std::int64_t raw : {std::int64_t{0}, std::int64_t{5}, std::int64_t{257}})
        EXPECT_FALSE(ImageExportFormat::make({.rawValue = raw})) << raw;

    const std::pair<const char*, int> table[] = {{"jpg", 2}, {"JPEG", 2}, {"png", 1}, {"Tiff", 3},
                                                 {"TIF", 3}, {"heic", 4}, {"HEIF", 4}};
    for (const auto& [extension, raw] : table)
        EXPECT_EQ(ImageExportFormat::make({.pathExt = extension})->rawValue(), raw) << extension;
    for (std::string_view unknown : {"", ".png", "gif", "jpgx", "jp", "pn\0", "p\xCE\xA0g"})
        EXPECT_FALSE(ImageExportFormat::make({.pathExt = unknown})) << unknown;
}

TEST(ImageExportFormat, SaysHowItIsNamedAndEncoded) {
    std::size_t position = 0;
    for (const auto& [format, extension, displayName, type] :
         {std::tuple(ImageExportFormat::png, "png", "png", "public.png"),
          {ImageExportFormat::jpg, "jpg", "jpeg", "public.jpeg"},
          {ImageExportFormat::tiff, "tiff", "tiff", "public.tiff"},
          {ImageExportFormat::heic, "heic", "heif", "public.heic"}}) {
        EXPECT_EQ(ImageExportFormat::allCases[position++], format);
        EXPECT_EQ(format.pathExtension(), extension);
        EXPECT_EQ(format.displayName(), displayName);
        EXPECT_EQ(format.cgType(), type);
    }
}

TEST(ExifOrientation, IsNamedExactly) {
    EXPECT_EQ(ExifOrientation::make({.rawValue = "rotate90CW"}), ExifOrientation::rotate90CW);
    for (std::string_view unknown : {"Horizontal", "", "rotate90CW ", "left"})
        EXPECT_FALSE(ExifOrientation::make({.rawValue = unknown})) << unknown;
    for (const ExifOrientation orientation : ExifOrientation::allCases)
        EXPECT_EQ(ExifOrientation::make({.rawValue = orientation.rawValue()}), orientation);
}

TEST(RenamedExifOrientation, IsTheSamePositionUnderAnotherName) {
    EXPECT_EQ(RenamedExifOrientation::make({.rawValue = 6}), RenamedExifOrientation::left);
    EXPECT_EQ(ExifOrientation({.renamed = RenamedExifOrientation::left}),
              ExifOrientation::rotate90CW);
    EXPECT_FALSE(RenamedExifOrientation::make({.rawValue = 0}));
    EXPECT_FALSE(RenamedExifOrientation::make({.rawValue = 9}));
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(RenamedExifOrientation::allCases[i].rawValue(), static_cast<std::int64_t>(i) + 1);
        EXPECT_EQ(ExifOrientation::allCases[i].renamed(), RenamedExifOrientation::allCases[i]);
    }
    const auto& all = RenamedExifOrientation::allCases;
    EXPECT_EQ(std::unordered_set<RenamedExifOrientation>(all.begin(), all.end()).size(), 8u);
}

template <class Orientation>
void expectCompositions() {
    // Horizontal mirror, vertical mirror, left turn and right turn of each position.
    constexpr std::size_t table[8][4] = {{1, 3, 7, 5}, {0, 2, 4, 6}, {3, 1, 5, 7}, {2, 0, 6, 4},
                                         {5, 7, 3, 1}, {4, 6, 0, 2}, {7, 5, 1, 3}, {6, 4, 2, 0}};
    for (std::size_t i = 0; i < 8; ++i) {
        const Orientation start = Orientation::allCases[i];
        EXPECT_EQ(start.horizontalMirrored(), Orientation::allCases[table[i][0]]);
        EXPECT_EQ(start.verticalMirrored(), Orientation::allCases[table[i][1]]);
        EXPECT_EQ(start.leftRotated(), Orientation::allCases[table[i][2]]);
        EXPECT_EQ(start.rightRotated(), Orientation::allCases[table[i][3]]);

        Orientation changed = start;
        changed.horizontalFlip();
        changed.leftRotate();
        changed.verticalFlip();
        changed.rightRotate();
        changed.rightRotate();
        EXPECT_EQ(changed, start.horizontalMirrored()
                               .leftRotated()
                               .verticalMirrored()
                               .rightRotated()
                               .rightRotated());
    }
}

TEST(ExifOrientation, ComposesWithMirrorsAndTurns) { expectCompositions<ExifOrientation>(); }

TEST(RenamedExifOrientation, ComposesWithMirrorsAndTurns) {
    expectCompositions<RenamedExifOrientation>();
}

} // namespace
