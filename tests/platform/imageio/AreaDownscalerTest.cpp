#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/AreaDownscaler.h>

namespace zorvan::imageio {
namespace {

TEST(AreaDownscaler, EqualsTheExactAverage) {
    constexpr std::array<int, 4> sizes[] = {
        {1, 1, 1, 1},    {7, 5, 7, 5},    {7, 5, 1, 1},   {100, 80, 33, 27}, {64, 64, 32, 32},
        {101, 3, 50, 3}, {3, 101, 3, 50}, {5, 700, 2, 1}, {97, 89, 96, 88},  {77, 701, 33, 2}};
    for (const auto& [width, height, toWidth, toHeight] : sizes) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        Bitmap source = noiseBitmap(width, height);
        if (height == 701) // whose sums are the largest there are
            std::fill_n(source.data(), source.byteCount(), std::uint8_t{255});
        std::optional<Bitmap> result = Bitmap::make(toWidth, toHeight);
        areaDownscale(source, *result, {0, toHeight});
        const Difference d = difference(*result, referenceDownscale(source, toWidth, toHeight));
        EXPECT_LE(d.largest, 1); // a tie may round the other way
        EXPECT_LT(d.mean, 0.02);
        for (std::int64_t i = 0; i < result->byteCount(); ++i)
            ASSERT_LE(result->data()[i], result->data()[i / 4 * 4 + 3]) << "more than alpha";
    }
}

TEST(AreaDownscaler, BandsOnTwoThreadsGiveTheSamePicture) {
    const Bitmap source = noiseBitmap(301, 203);
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

} // namespace
} // namespace zorvan::imageio
