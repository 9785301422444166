#include <tests/Testing.h>

#include <zorvan/colour/LAB.h>
#include <zorvan/colour/RGB.h>
#include <zorvan/colour/XYZ.h>
#include <zorvan/colour/YUV.h>
#include <zorvan/colour/convertToLAB.h>

namespace {

RGB randomRGB(std::mt19937& random) {
    const auto v = random();
    return RGB(static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
               static_cast<std::uint8_t>(v >> 16));
}

// The curve of L*a*b* in extended precision.
double curve(double t) {
    return static_cast<double>(t > 0.008856 ? std::pow(static_cast<long double>(t), 1 / 3.0L)
                                            : 7.787L * t + 16 / 116.0L);
}

} // namespace

TEST(RGB, RoundsAndClampsReals) {
    EXPECT_EQ(RGB({.unitR = NAN, .unitG = INFINITY, .unitB = -1}), RGB(0, 255, 0));
    const double belowHalf = std::nextafter(0.5 / 255, 0.0);
    EXPECT_EQ(RGB({.unitR = belowHalf, .unitG = 0.5 / 255, .unitB = 254.5 / 255}), RGB(0, 1, 255));
}

TEST(RGB, ReadsBytesWithinTheBuffer) {
    const std::vector<std::uint8_t> buffer{1, 2, 3, 4};
    EXPECT_EQ(RGB({.rgbPtr = buffer, .at = 1}), RGB(2, 3, 4));
    EXPECT_DEATH((void)RGB({.rgbPtr = buffer, .at = 2}),
                 "^RGB needs three bytes from index 2 on; there are . in all.\n$");
    EXPECT_DEATH((void)RGB({.rgbPtr = buffer, .at = SIZE_MAX}), "^RGB needs three bytes");
}

TEST(XYZ, FollowsTheFormulasToTheLastDigits) {
    std::mt19937 random(2);
    for (int i = 0; i < 20000; ++i) {
        const RGB rgb = randomRGB(random);
        const auto linear = [](std::uint8_t byte) {
            const double c = byte / 255.0;
            return 100 * (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92);
        };
        const double r = linear(rgb.r), g = linear(rgb.g), b = linear(rgb.b);
        const XYZ xyz(rgb);
        ASSERT_DOUBLE_EQ(xyz.x, 0.4124 * r + 0.3576 * g + 0.1805 * b);
        ASSERT_DOUBLE_EQ(xyz.y, 0.2126 * r + 0.7152 * g + 0.0722 * b);
        ASSERT_DOUBLE_EQ(xyz.z, 0.0193 * r + 0.1192 * g + 0.9505 * b);
        const double fx = curve(xyz.x / 95.047), fy = curve(xyz.y / 100),
                     fz = curve(xyz.z / 108.883);
        const LAB lab(xyz);
        ASSERT_NEAR(lab.l, 116 * fy - 16, 1e-13);
        ASSERT_NEAR(lab.a, 500 * (fx - fy), 1e-12);
        ASSERT_NEAR(lab.b, 200 * (fy - fz), 1e-12);
    }
}

TEST(ColourModels, AreBlackAtFirst) {
    EXPECT_EQ(XYZ(), XYZ(RGB(0, 0, 0)));
    EXPECT_EQ(LAB(), LAB(0, 0, 0));
}

TEST(XYZ, CurveHoldsFarBeyondColours) {
    for (const double y : {0.8856, 0.88561, 1.0, 99.999e6, 100.001e6, 1e300}) {
        const double expected = 116 * curve(y / 100) - 16;
        EXPECT_NEAR(XYZ(0, y, 0).lab().l, expected, 1e-14 * std::fabs(expected)) << y;
    }
    EXPECT_EQ(XYZ(0, INFINITY, 0).lab().l, INFINITY);
    EXPECT_NEAR(XYZ(0, -100, 0).lab().l, 116 * (-7.787 + 16.0 / 116) - 16, 1e-10);
    EXPECT_TRUE(std::isnan(XYZ(NAN, 0, 0).lab().a));
}

TEST(Conversions, ClampWhatIsOutOfGamut) {
    EXPECT_EQ(XYZ(200, 200, 200).rgb(), RGB(255, 255, 255));
    EXPECT_EQ(XYZ(-5, -5, NAN).rgb(), RGB(0, 0, 0));
    EXPECT_EQ(YUV(1, 1, 1).rgb(), RGB(255, 6, 255));
}

TEST(Conversions, ComeBack) {
    std::mt19937 random(4);
    for (int i = 0; i < 20000; ++i) {
        const RGB rgb = randomRGB(random);
        ASSERT_EQ(rgb.xyz().rgb(), rgb);
        ASSERT_EQ(rgb.xyz().lab().xyz().rgb(), rgb);
        const RGB back = rgb.yuv().rgb();
        ASSERT_LE(std::abs(back.r - rgb.r) + std::abs(back.g - rgb.g) + std::abs(back.b - rgb.b),
                  1);
    }
    EXPECT_DOUBLE_EQ(YUV(RGB(255, 0, 0)).v, 0.615);
    EXPECT_EQ(LAB(1, 2, 3).with({.l = 7}).with({.a = 8}).with({.b = 9}), LAB(7, 8, 9));
}

TEST(ConvertToLAB, EqualsTheSingleConversion) {
    std::mt19937 random(6);
    for (const std::size_t stride : {3U, 4U, 7U}) {
        std::vector<std::uint8_t> pixels(stride * 5000 + 2);
        for (std::uint8_t& byte : pixels)
            byte = static_cast<std::uint8_t>(random());
        std::vector<LAB> labs(5001, LAB(-1, -1, -1));
        ASSERT_EQ(convertToLAB(pixels, labs, stride), 5000U);
        for (std::size_t i = 0; i < 5000; ++i)
            ASSERT_EQ(labs[i], RGB({.rgbPtr = pixels, .at = i * stride}).xyz().lab());
        EXPECT_EQ(labs[5000], LAB(-1, -1, -1));
    }
}

TEST(ConvertToLAB, StopsWhereEitherBufferEnds) {
    const std::vector<std::uint8_t> pixels(8);
    std::vector<LAB> labs(5);
    EXPECT_EQ(convertToLAB(pixels, labs), 2U);
    EXPECT_EQ(convertToLAB(pixels, std::span(labs).first(1)), 1U);
    EXPECT_EQ(convertToLAB({}, labs), 0U);
    EXPECT_DEATH(convertToLAB(pixels, labs, 2), "^A pixel needs three bytes, not 2.\n$");
}
