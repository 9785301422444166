#include <zorvan/media/CIFilter.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zorvan {

namespace {

class ColorMatrix final : public CIFilter {
public:
    static constexpr std::string_view filterName = "CIColorMatrix";
    ColorMatrix() : CIFilter(filterName) {}

    CIImage::Pointer outputImage() const override {
        const CIImage::Pointer image = inputImage();
        return image ? image->changingPixels(change()) : nullptr;
    }

private:
    CIImage::PixelChange change() const {
        const std::array vectors{
            vector("inputRVector", {1, 0, 0, 0}), vector("inputGVector", {0, 1, 0, 0}),
            vector("inputBVector", {0, 0, 1, 0}), vector("inputAVector", {0, 0, 0, 1}),
            vector("inputBiasVector", {})};
        // By columns: what each component of a pixel gives to all four.
        std::array<std::array<float, 4>, 5> columns{};
        for (std::size_t i = 0; i < 4; ++i) {
            const CIVector& row = vectors[i];
            const std::array factors{row.x, row.y, row.z, row.w};
            for (std::size_t j = 0; j < 4; ++j)
                columns[j][i] = static_cast<float>(factors[j]);
        }
        const CIVector& bias = vectors[4];
        columns[4] = {static_cast<float>(bias.x), static_cast<float>(bias.y),
                      static_cast<float>(bias.z), static_cast<float>(bias.w)};
        return [columns](float* pixels, std::int64_t count) {
            for (std::int64_t i = 0; i < count; ++i, pixels += 4) {
                const std::array<float, 4> in{pixels[0], pixels[1], pixels[2], pixels[3]};
                for (std::size_t c = 0; c < 4; ++c)
                    pixels[c] = in[0] * columns[0][c] + in[1] * columns[1][c] +
                                in[2] * columns[2][c] + in[3] * columns[3][c] + columns[4][c];
            }
        };
    }
};

class ToneCurve final : public CIFilter {
public:
    static constexpr std::string_view filterName = "CIToneCurve";
    ToneCurve() : CIFilter(filterName) {}

    CIImage::Pointer outputImage() const override {
        const CIImage::Pointer image = inputImage();
        if (!image)
            return nullptr;
        return image->changingPixels([table = table()](float* pixels, std::int64_t count) {
            for (std::int64_t i = 0; i < count; ++i, pixels += 4)
                for (int c = 0; c < 3; ++c)
                    pixels[c] = lookedUp(table, pixels[c]);
        });
    }

private:
    static constexpr int intervals = 1024;
    using Table = std::array<float, intervals + 1>;
    using Points = std::array<CGPoint, 5>;

    static float lookedUp(const Table& table, float value) noexcept {
        // Written so that a value that is no number counts as 0.
        const float held = value > 0 ? std::min(value, 1.0F) : 0.0F;
        const float position = held * intervals;
        const int below = std::min(static_cast<int>(position), intervals - 1);
        const auto index = static_cast<std::size_t>(below);
        const float part = position - static_cast<float>(below);
        return table[index] + (table[index + 1] - table[index]) * part;
    }

    Points points() const {
        Points result;
        for (std::size_t i = 0; i < result.size(); ++i) {
            const double even = static_cast<double>(i) / 4;
            const CIVector point = vector("inputPoint" + std::to_string(i), {even, even, 0, 0});
            result[i] = {std::isfinite(point.x) ? point.x : even,
                         std::isfinite(point.y) ? point.y : even};
        }
        return result;
    }

    /// The slopes at the points, by Fritsch and Carlson, which keep each piece from turning back.
    static std::array<double, 5> slopesAt(const Points& p) noexcept {
        std::array<double, 4> rises{};
        for (std::size_t i = 0; i < 4; ++i)
            rises[i] = (p[i + 1].y - p[i].y) / std::max(p[i + 1].x - p[i].x, 1e-6);
        std::array<double, 5> slopes{rises[0], 0, 0, 0, rises[3]};
        for (std::size_t i = 1; i < 4; ++i)
            slopes[i] = rises[i - 1] * rises[i] <= 0
                            ? 0
                            : 2 * rises[i - 1] * rises[i] / (rises[i - 1] + rises[i]);
        return slopes;
    }

    Table table() const {
        const Points p = points();
        const std::array<double, 5> slopes = slopesAt(p);
        Table result;
        for (int step = 0; step <= intervals; ++step) {
            const double x = static_cast<double>(step) / intervals;
            std::size_t i = 0;
            while (i < 3 && x > p[i + 1].x)
                ++i;
            const double width = std::max(p[i + 1].x - p[i].x, 1e-6);
            const double t = std::clamp((x - p[i].x) / width, 0.0, 1.0);
            const double u = 1 - t;
            const double y = p[i].y * u * u * (1 + 2 * t) + slopes[i] * width * t * u * u +
                             p[i + 1].y * t * t * (3 - 2 * t) - slopes[i + 1] * width * t * t * u;
            result[static_cast<std::size_t>(step)] = static_cast<float>(y);
        }
        return result;
    }
};

} // namespace

CIFilter::Pointer CIFilter::create(std::string_view name) {
    if (name == ColorMatrix::filterName)
        return std::make_shared<ColorMatrix>();
    if (name == ToneCurve::filterName)
        return std::make_shared<ToneCurve>();
    return nullptr;
}

std::vector<std::string_view> CIFilter::filterNames() {
    return {ColorMatrix::filterName, ToneCurve::filterName};
}

CIFilter::Value CIFilter::value(std::string_view key) const {
    if (key == kCIOutputImageKey)
        return outputImage();
    const auto found = values_.find(key);
    return found == values_.end() ? Value() : found->second;
}

CIImage::Pointer CIFilter::inputImage() const {
    const Value input = value(kCIInputImageKey);
    const auto* image = std::get_if<CIImage::Pointer>(&input);
    return image ? *image : nullptr;
}

CIVector CIFilter::vector(std::string_view key, const CIVector& unset) const {
    const Value set = value(key);
    const auto* found = std::get_if<CIVector>(&set);
    return found ? *found : unset;
}

} // namespace zorvan
