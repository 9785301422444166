#include "Support.h"

#include <zorvan/platform/graphics/AreaDownscaler.h>

#include <gtest/gtest.h>

#include <random>
#include <thread>

namespace zorvan::imageio {
namespace {

Bitmap noise(std::int64_t width, std::int64_t height) {
    std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
    Bitmap bitmap = pattern(width, height, true);
    for (std::int64_t i = 0; i < bitmap.byteCount(); i += 4) {
        const unsigned alpha = random() % 256;
        for (int c = 0; c < 3; ++c)
            bitmap.data()[i + c] = static_cast<std::uint8_t>(random() % (alpha + 1));
        bitmap.data()[i + 3] = static_cast<std::uint8_t>(alpha);
    }
    return bitmap;
}

struct Case {
    std::int64_t width, height, toWidth, toHeight;
};

class AreaDownscalerSizes : public testing::TestWithParam<Case> {};

TEST_P(AreaDownscalerSizes, EqualsTheExactAverage) {
    const Case size = GetParam();
    const Bitmap source = noise(size.width, size.height);
    std::optional<Bitmap> result = Bitmap::make(size.toWidth, size.toHeight);
    areaDownscale(source, *result, {0, size.toHeight});
    const Bitmap expected = referenceDownscale(source, size.toWidth, size.toHeight);
    const Difference d = difference(*result, expected);
    EXPECT_LE(d.largest, 1); // a tie may round the other way
    EXPECT_LT(d.mean, 0.02);
    for (std::int64_t i = 0; i < result->byteCount(); ++i)
        ASSERT_LE(result->data()[i], result->data()[i / 4 * 4 + 3]) << "more colour than alpha";
}

INSTANTIATE_TEST_SUITE_P(Sizes, AreaDownscalerSizes,
                         testing::Values(Case{1, 1, 1, 1}, Case{7, 5, 7, 5}, Case{7, 5, 1, 1},
                                         Case{100, 80, 33, 27}, Case{64, 64, 32, 32},
                                         Case{101, 3, 50, 3}, Case{3, 101, 3, 50},
                                         Case{5, 700, 2, 1}, Case{97, 89, 96, 88}));

TEST(AreaDownscaler, BandsOnTwoThreadsGiveTheSamePicture) {
    const Bitmap source = noise(301, 203);
    for (const std::int64_t height : {1, 2, 7, 150, 203}) {
        std::optional<Bitmap> whole = Bitmap::make(90, height);
        std::optional<Bitmap> banded = Bitmap::make(90, height);
        areaDownscale(source, *whole, {0, height});
        std::thread upper([&] { areaDownscale(source, *banded, {0, height / 2}); });
        areaDownscale(source, *banded, {height / 2, height});
        upper.join();
        EXPECT_EQ(difference(*whole, *banded).largest, 0) << height;
    }
}

TEST(AreaDownscaler, KeepsWhiteWhite) {
    std::optional<Bitmap> white = Bitmap::make(1000, 999);
    std::fill(white->data(), white->data() + white->byteCount(), std::uint8_t{255});
    std::optional<Bitmap> result = Bitmap::make(77, 33);
    areaDownscale(*white, *result, {0, 33});
    EXPECT_TRUE(std::all_of(result->data(), result->data() + result->byteCount(),
                            [](std::uint8_t v) { return v == 255; }));
}

} // namespace
} // namespace zorvan::imageio
