#pragma once

#include <cstdint>
#include <vector>

namespace zorvan::imageio {

/// How brightness and colour difference turn into red, green and blue.
struct YCbCrMatrix {
    double kr = 0.299;
    double kb = 0.114;
    bool fullRange = true;
};

/// One row of a planar picture: samples of 8 bits, or of more in 16.
struct YCbCrRow {
    const std::uint8_t* y = nullptr;
    /// Null in a grey picture.
    const std::uint8_t* cb = nullptr;
    const std::uint8_t* cr = nullptr;
    /// Null in an opaque picture.
    const std::uint8_t* alpha = nullptr;
};

class YCbCrConverter {
public:
    struct Format {
        std::int64_t width;
        int bits;
        int alphaBits;
        /// Each colour sample stands for two pixels of the row.
        bool halfWidth;
    };

    YCbCrConverter(const YCbCrMatrix& matrix, const Format& format);

    /// As RGBA, not premultiplied.
    void convert(const YCbCrRow& row, std::uint8_t* rgba);

private:
    template <class Sample>
    void convertSamples(const YCbCrRow& row, std::uint8_t* rgba);
    template <class Sample>
    void spread(const std::uint8_t* samples, std::vector<std::int32_t>& out) const;

    Format format_;
    // Fixed-point factors with `fractionBits` bits after the point.
    std::int32_t yFactor_;
    std::int32_t redFromCr_;
    std::int32_t greenFromCb_;
    std::int32_t greenFromCr_;
    std::int32_t blueFromCb_;
    std::int32_t offset_;
    std::int32_t middle_;
    std::vector<std::int32_t> cb_;
    std::vector<std::int32_t> cr_;
};

} // namespace zorvan::imageio
