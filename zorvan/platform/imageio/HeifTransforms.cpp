#include <zorvan/platform/imageio/internal/HeifTransforms.h>

#include <algorithm>
#include <utility>

namespace zorvan::imageio {

void HeifTransforms::follow(const Matrix& step) noexcept {
    const Matrix m = matrix_;
    matrix_ = {step[0] * m[0] + step[1] * m[2], step[0] * m[1] + step[1] * m[3],
               step[2] * m[0] + step[3] * m[2], step[2] * m[1] + step[3] * m[3]};
}

void HeifTransforms::rotate(int quarters) noexcept {
    for (int i = 0; i < quarters; ++i)
        follow({0, 1, -1, 0});
}

void HeifTransforms::mirror(bool leftRight) noexcept {
    follow(leftRight ? Matrix{-1, 0, 0, 1} : Matrix{1, 0, 0, -1});
}

PixelSize HeifTransforms::size() const noexcept {
    const bool swapped = matrix_[0] == 0;
    return swapped ? PixelSize{crop_.height, crop_.width} : PixelSize{crop_.width, crop_.height};
}

// Coordinates are doubled and counted from the centres, which every turn leaves in place; the
// inverse of a turn or mirror is its transpose.
void HeifTransforms::keep(const PixelRect& part) noexcept {
    const PixelSize now = size();
    const std::int64_t left = std::clamp<std::int64_t>(part.x, 0, now.width - 1);
    const std::int64_t top = std::clamp<std::int64_t>(part.y, 0, now.height - 1);
    const std::int64_t right = std::clamp(part.x + part.width, left + 1, now.width);
    const std::int64_t bottom = std::clamp(part.y + part.height, top + 1, now.height);
    const auto back = [&](std::int64_t x, std::int64_t y) {
        const std::int64_t u = 2 * x - now.width;
        const std::int64_t v = 2 * y - now.height;
        return std::pair((matrix_[0] * u + matrix_[2] * v + crop_.width) / 2,
                         (matrix_[1] * u + matrix_[3] * v + crop_.height) / 2);
    };
    const auto [x1, y1] = back(left, top);
    const auto [x2, y2] = back(right, bottom);
    crop_ = {crop_.x + std::min(x1, x2), crop_.y + std::min(y1, y2),
             std::max(x1, x2) - std::min(x1, x2), std::max(y1, y2) - std::min(y1, y2)};
}

int HeifTransforms::orientation() const noexcept {
    constexpr std::array<Matrix, 8> byOrientation = {{{1, 0, 0, 1},
                                                      {-1, 0, 0, 1},
                                                      {-1, 0, 0, -1},
                                                      {1, 0, 0, -1},
                                                      {0, 1, 1, 0},
                                                      {0, -1, 1, 0},
                                                      {0, -1, -1, 0},
                                                      {0, 1, -1, 0}}};
    const auto found = std::find(byOrientation.begin(), byOrientation.end(), matrix_);
    return static_cast<int>(found - byOrientation.begin()) + 1;
}

} // namespace zorvan::imageio
