#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <vector>

namespace zorvan {

/// Shrinks a picture to a bitmap by exact area average: every pixel of the result is the mean of
/// the part of the source that it covers, each source pixel weighted by how much of it lies there.
/// Takes the source row by row and keeps three rows' worth of sums, so the source need never be
/// whole in memory. All four components are treated alike, so they must be premultiplied (either
/// layout).
///
/// For two threads: one scaler each over one half of the result's rows, both on the same bitmap.
class AreaDownscaler {
public:
    /// A range of rows, the last not included.
    struct Rows {
        std::int64_t first; ///< From 0.
        std::int64_t last;  ///< One past the last row.
    };

    /// Writes all rows of `target`, which must outlive the scaler (or be moved to with its pixels
    /// in place). Each side of the source must be at least as long as the target's. Throws
    /// `std::bad_alloc`.
    AreaDownscaler(Bitmap& target, std::int64_t sourceWidth, std::int64_t sourceHeight);
    /// Writes the given rows of `target` only.
    AreaDownscaler(Bitmap& target, std::int64_t sourceWidth, std::int64_t sourceHeight, Rows rows);

    /// The source rows that have to be pushed, all of them and in order.
    Rows sourceRows() const noexcept;

    /// Takes the next source row, `sourceWidth * 4` bytes.
    void push(const std::uint8_t* row) noexcept;

private:
    /// Where a column of the result begins: in source pixel `pixel`, of which `before` lies left of
    /// it.
    struct Boundary {
        std::int64_t pixel;
        float before;
    };

    void add(const std::uint8_t* row, std::int64_t overlap) noexcept;
    void foldWholeRows() noexcept;
    void finishRow() noexcept;

    std::uint8_t* target_;
    std::int64_t width_;
    std::int64_t height_;
    std::int64_t sourceWidth_;
    std::int64_t sourceHeight_;
    Rows rows_;
    std::int64_t sourceRow_;
    std::int64_t targetRow_;
    int wholeRowCount_ = 0;
    std::vector<Boundary> boundaries_;
    // Rows that lie in one result row entirely are summed as integers, the others weighted as
    // reals.
    std::vector<std::uint16_t> wholeRows_;
    std::vector<float> sums_;
};

/// Shrinks `source` into rows `rows` of `target`, which is no larger on either side and has the
/// same layout. Throws `std::bad_alloc`. Different rows of a target may be made on different
/// threads.
void areaDownscale(const Bitmap& source, Bitmap& target, AreaDownscaler::Rows rows);

} // namespace zorvan
