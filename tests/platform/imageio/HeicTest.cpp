#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/imageio/internal/BoxWriter.h>
#include <zorvan/platform/imageio/internal/HeifMeta.h>
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

Data codedIn(const Data& file) {
    const auto source = sourceOver(file);
    const HeifMeta meta(*source);
    const HeifPicture::Extent extent = meta.find(meta.primary())->extents[0];
    return source->bytes(extent.offset, extent.length);
}

void writeProperties(BoxWriter& out, std::size_t tiles, PixelSize size, const PixelRect& crop,
                     const std::vector<HeifBox>& coding) {
    out.box("ipco", [&] {
        out.fullBox("ispe", 0, [&] {
            out.number(static_cast<std::uint64_t>(size.width), 4);
            out.number(static_cast<std::uint64_t>(size.height), 4);
        });
        out.box("clap", [&] {
            const std::int64_t x = 2 * crop.x + crop.width - size.width;
            const std::int64_t y = 2 * crop.y + crop.height - size.height;
            constexpr std::int64_t whole = 1, half = 2;
            for (const std::int64_t number :
                 {crop.width, whole, crop.height, whole, x, half, y, half})
                out.number(static_cast<std::uint64_t>(number), 4);
        });
        for (const HeifBox& property : coding)
            out.box(property.type, [&] { out.write(property.content); });
    });
    out.fullBox("ipma", 0, [&] {
        out.number(tiles + 1, 4);
        for (std::size_t i = 0; i <= tiles; ++i) {
            const std::size_t first = i == 0 ? 1 : 3, count = i == 0 ? 2 : coding.size();
            out.number(i + 1, 2);
            out.number(count, 1);
            for (std::size_t k = 0; k < count; ++k)
                out.number(first + k, 1);
        }
    });
}

/// A file whose picture is laid out in the pictures of others.
Data tiled(const std::vector<Data>& files, std::size_t columns, PixelSize size,
           const PixelRect& crop) {
    BoxWriter grid, out;
    grid.number((files.size() / columns - 1) << 8 | (columns - 1), 4);
    grid.number(static_cast<std::uint64_t>(size.width), 2);
    grid.number(static_cast<std::uint64_t>(size.height), 2);
    std::vector<Data> items = {grid.bytes()};
    std::ranges::transform(files, std::back_inserter(items), codedIn);
    const auto first = sourceOver(files[0]);
    const HeifMeta coded(*first);
    out.box("ftyp", [&] { out.text("heic"); });
    out.fullBox("meta", 0, [&] {
        out.fullBox("pitm", 0, [&] { out.number(1, 2); });
        out.box("idat",
                [&] { std::ranges::for_each(items, [&](auto& item) { out.write(item); }); });
        out.fullBox("iloc", 1, [&] {
            out.number(0x4400, 2);
            out.number(items.size(), 2);
            for (std::size_t i = 0, at = 0; i < items.size(); at += items[i++].size())
                for (const auto& [number, width] :
                     {std::pair(i + 1, 2u), {1, 2}, {0, 2}, {1, 2}, {at, 4}, {items[i].size(), 4}})
                    out.number(number, width);
        });
        out.fullBox("iinf", 0, [&] {
            out.number(items.size(), 2);
            for (std::size_t i = 0; i < items.size(); ++i)
                out.fullBox("infe", 2, [&] {
                    out.number(i + 1, 2);
                    out.number(0, 2);
                    out.text(i == 0 ? "grid" : "hvc1");
                });
        });
        out.fullBox("iref", 0, [&] {
            out.box("dimg", [&] {
                out.number(1, 2);
                out.number(files.size(), 2);
                for (std::size_t i = 0; i < files.size(); ++i)
                    out.number(i + 2, 2);
            });
        });
        out.box("iprp", [&] {
            writeProperties(out, files.size(), size, crop,
                            coded.propertiesOf(*coded.find(coded.primary())));
        });
    });
    return out.bytes();
}

/// Three rows of three tiles of 128 by 96.
Data nineTiles(const Bitmap& whole, PixelSize size, const PixelRect& crop) {
    std::vector<Data> files;
    for (std::int64_t i = 0; i < 9; ++i)
        files.push_back(
            encoded(FileFormat::heic, cropped(whole, {i % 3 * 128, i / 3 * 96, 128, 96}).value()));
    return tiled(files, 3, size, crop);
}

TEST(Heic, TilesMakeUpThePictureAndMayReachBeyondIt) {
    const Bitmap whole = pattern(384, 288);
    for (const PixelRect& crop : {PixelRect{0, 0, 300, 200}, {130, 40, 120, 160}, {7, 100, 9, 3}}) {
        const Data bytes = nineTiles(whole, {300, 200}, crop);
        const Bitmap wanted = cropped(whole, crop).value();
        EXPECT_EQ(number(propertiesOf(bytes), "PixelWidth"), crop.width);
        EXPECT_LE(difference(decoded(bytes), wanted).mean, 7);
        const Bitmap small = decoded(bytes, {.maximumPixelSize = 8});
        EXPECT_LE(difference(small, referenceDownscale(wanted, small.width(), small.height())).mean,
                  7);
    }
}

TEST(Heic, WhatTilesDoNotMakeUpIsRefused) {
    const Data good = nineTiles(pattern(384, 288), {300, 200}, {0, 0, 300, 200});
    const std::size_t grid = positionOf(good, "idat") + 4, type = positionOf(good, "grid");
    const std::size_t stated = positionOf(good, "ispe") + 8, parts = positionOf(good, "dimg") + 8;
    const std::size_t tile = positionOf(good, "pixi") - 12; // the size of tiles
    constexpr const char *damaged = "the file is damaged", *tooLarge = "the picture is too large",
                         *unsupported = "this variety of the format is not supported";
    using Changes = std::vector<std::pair<std::size_t, int>>;
    const std::pair<Changes, const char*> table[] = {
        {{}, ""},
        {{{parts + 3, 2}, {parts + 5, 2}}, ""},           // a tile thrice
        {{{grid + 3, 3}}, damaged},                       // four columns
        {{{grid + 5, 0x2D}}, damaged},                    // other than stated
        {{{grid + 4, 2}, {stated + 2, 2}}, damaged},      // wider than its tiles
        {{{grid + 6, 2}, {stated + 6, 2}}, damaged},      // and higher
        {{{parts + 1, 1}}, damaged},                      // a tile is the picture
        {{{parts + 1, 99}}, damaged},                     // there is no such tile
        {{{tile + 3, 64}}, damaged},                      // too few of them
        {{{tile + 3, 192}}, damaged},                     // larger than coded
        {{{tile, 1}}, tooLarge},                          // gigantic tiles
        {{{positionOf(good, "hvc1"), 'x'}}, unsupported}, // in no known coding
        {{{type, 'i'}, {type + 1, 'o'}, {type + 2, 'v'}, {type + 3, 'l'}}, unsupported},
    };
    for (const auto& [changes, error] : table) {
        Data bytes = good;
        for (const auto& [at, value] : changes)
            bytes[at] = static_cast<std::byte>(value);
        EXPECT_EQ(errorOf(bytes), error) << &error - &table[0].second;
    }
    Data gigantic = encoded(FileFormat::heic, pattern(128, 96));
    gigantic[positionOf(gigantic, "ispe") + 8] = std::byte{0x7F};
    EXPECT_EQ(errorOf(gigantic), tooLarge);
    Data itself = tiled({encoded(FileFormat::heic, pattern(128, 96), {{"Orientation", 6}})}, 1,
                        {96, 128}, {0, 0, 96, 128});
    std::ranges::copy(bytesOf("iden"), &itself[positionOf(itself, "grid")]);
    expectStored(itself, pattern(128, 96), 6);
    itself[positionOf(itself, "dimg") + 9] = std::byte{1};
    EXPECT_EQ(errorOf(itself), unsupported);
}

TEST(Heic, PiecesThatTakeNoBytesTakeNoMemory) {
    BoxWriter out;
    out.box("ftyp", [&] { out.text("heic"); });
    out.fullBox("meta", 0, [&] {
        out.fullBox("iloc", 0, [&] {
            out.number(1000, 4); // bytes of a place, and items
            for (std::size_t i = 0; i < 1000; ++i)
                out.number(0x1'0000'FFFF, 6); // item 1, in this file, in 65,535 pieces
        });
    });
    EXPECT_EQ(errorWithin(std::uint64_t{64} << 20, out.bytes()), "the file is damaged");
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
