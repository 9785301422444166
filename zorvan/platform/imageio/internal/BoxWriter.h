#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace zorvan::imageio {

/// Writes the boxes of a HEIF file, one after and into the other.
class BoxWriter {
public:
    void number(std::uint64_t value, std::size_t width) {
        appendNumber(bytes_, value, width, true);
    }
    void write(Bytes bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    void text(std::string_view text) { write(std::as_bytes(std::span(text))); }

    template <class Fill>
    void box(std::string_view type, Fill fill) {
        const std::size_t start = bytes_.size();
        number(0, lengthWidth);
        text(type);
        fill();
        Data length;
        appendNumber(length, bytes_.size() - start, lengthWidth, true);
        std::ranges::copy(length, bytes_.begin() + static_cast<std::ptrdiff_t>(start));
    }
    /// One that begins with a version and flags.
    template <class Fill>
    void fullBox(std::string_view type, int version, Fill fill) {
        box(type, [&] {
            number(static_cast<std::uint64_t>(version), 1);
            number(0, 3);
            fill();
        });
    }
    const Data& bytes() const& { return bytes_; }
    Data bytes() && { return std::move(bytes_); }

private:
    static constexpr std::size_t lengthWidth = 4;
    Data bytes_ = {};
};

} // namespace zorvan::imageio
