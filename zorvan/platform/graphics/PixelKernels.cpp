#include <zorvan/platform/graphics/internal/PixelKernels.h>

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace zorvan {
namespace {

void copyPixels(std::uint8_t* to, const std::uint8_t* from, std::int64_t count) {
    std::memcpy(to, from, static_cast<std::size_t>(count) * 4);
}

void reversePixels(std::uint8_t* to, const std::uint8_t* from, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        std::memcpy(to + i * 4, from + (count - 1 - i) * 4, 4);
}

void transposePixels(std::uint8_t* to, std::int64_t toBytesPerRow, const std::uint8_t* from,
                     std::int64_t fromBytesPerRow, std::int64_t columns, std::int64_t rows) {
    for (std::int64_t x = 0; x < columns; ++x)
        for (std::int64_t y = 0; y < rows; ++y)
            std::memcpy(to + y * toBytesPerRow + x * 4, from + x * fromBytesPerRow + y * 4, 4);
}

/// Moves every byte of a pixel `shift` places on.
template <int shift>
void turnPixels(std::uint8_t* to, const std::uint8_t* from, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c)
            to[i * 4 + (c + shift) % 4] = from[i * 4 + c];
}

void weighRows(float* sums, const std::uint8_t* firstRow, std::int64_t bytesPerRow,
               const float* weights, std::int64_t rowCount, std::int64_t byteCount) {
    std::fill_n(sums, byteCount, 0.0F);
    for (std::int64_t k = 0; k < rowCount; ++k) {
        const std::uint8_t* const row = firstRow + k * bytesPerRow;
        const float weight = weights[k];
        for (std::int64_t i = 0; i < byteCount; ++i)
            sums[i] += static_cast<float>(row[i]) * weight;
    }
}

using Copy = void (*)(std::uint8_t*, const std::uint8_t*, std::int64_t);

/// A kernel that takes no notice of the caches.
template <Copy copy>
void withoutStreaming(std::uint8_t* to, const std::uint8_t* from, std::int64_t count, bool) {
    copy(to, from, count);
}

constexpr PixelKernels plainKernels{withoutStreaming<copyPixels>,
                                    withoutStreaming<reversePixels>,
                                    withoutStreaming<turnPixels<1>>,
                                    withoutStreaming<turnPixels<3>>,
                                    transposePixels,
                                    weighRows};

#if defined(__x86_64__)
#define ZORVAN_AVX2 __attribute__((target("avx2")))

std::int64_t pixelsToAlignment(const std::uint8_t* address, std::int64_t count) {
    const auto bytes = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(address) % 64);
    return std::min(count, (64 - bytes) % 64 / 4);
}

ZORVAN_AVX2 inline __m256i load(const std::uint8_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}
ZORVAN_AVX2 inline void store(std::uint8_t* to, __m256i pixels) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), pixels);
}
/// Writes a cache line; streaming needs all of it at once, or the write combining breaks.
ZORVAN_AVX2 inline void storeLine(std::uint8_t* to, __m256i first, __m256i second, bool streaming) {
    if (streaming) {
        _mm256_stream_si256(reinterpret_cast<__m256i*>(to), first);
        _mm256_stream_si256(reinterpret_cast<__m256i*>(to + 32), second);
    } else {
        store(to, first);
        store(to + 32, second);
    }
}

ZORVAN_AVX2 void copyAVX2(std::uint8_t* to, const std::uint8_t* from, std::int64_t count,
                          bool streaming) {
    if (!streaming)
        return copyPixels(to, from, count);
    std::int64_t i = pixelsToAlignment(to, count);
    copyPixels(to, from, i);
    for (; i + 16 <= count; i += 16)
        storeLine(to + i * 4, load(from + i * 4), load(from + i * 4 + 32), true);
    copyPixels(to + i * 4, from + i * 4, count - i);
    _mm_sfence();
}

ZORVAN_AVX2 void reverseAVX2(std::uint8_t* to, const std::uint8_t* from, std::int64_t count,
                             bool streaming) {
    const __m256i backwards = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
    std::int64_t i = pixelsToAlignment(to, count);
    reversePixels(to, from + (count - i) * 4, i);
    for (; i + 16 <= count; i += 16) {
        const std::uint8_t* const end = from + (count - i) * 4;
        const __m256i first = _mm256_permutevar8x32_epi32(load(end - 32), backwards);
        const __m256i second = _mm256_permutevar8x32_epi32(load(end - 64), backwards);
        storeLine(to + i * 4, first, second, streaming);
    }
    reversePixels(to + i * 4, from, count - i);
    if (streaming)
        _mm_sfence();
}

template <int shift>
ZORVAN_AVX2 void turnAVX2(std::uint8_t* to, const std::uint8_t* from, std::int64_t count,
                          bool streaming) {
    alignas(32) std::uint8_t order[32];
    for (int i = 0; i < 32; ++i)
        order[i] = static_cast<std::uint8_t>(i / 4 * 4 % 16 + (i + 4 - shift) % 4);
    const __m256i turned = load(order);
    std::int64_t i = pixelsToAlignment(to, count);
    turnPixels<shift>(to, from, i);
    for (; i + 16 <= count; i += 16) {
        const __m256i first = _mm256_shuffle_epi8(load(from + i * 4), turned);
        const __m256i second = _mm256_shuffle_epi8(load(from + i * 4 + 32), turned);
        storeLine(to + i * 4, first, second, streaming);
    }
    turnPixels<shift>(to + i * 4, from + i * 4, count - i);
    if (streaming)
        _mm_sfence();
}

ZORVAN_AVX2 inline void transpose8x8(std::uint8_t* to, std::int64_t toBytesPerRow,
                                     const std::uint8_t* from, std::int64_t fromBytesPerRow) {
    __m256i rows[8], pairs[8], quads[8];
    for (int i = 0; i < 8; ++i)
        rows[i] = load(from + i * fromBytesPerRow);
    for (int i = 0; i < 8; i += 2) {
        pairs[i] = _mm256_unpacklo_epi32(rows[i], rows[i + 1]);
        pairs[i + 1] = _mm256_unpackhi_epi32(rows[i], rows[i + 1]);
    }
    for (int i = 0; i < 8; i += 4) {
        quads[i] = _mm256_unpacklo_epi64(pairs[i], pairs[i + 2]);
        quads[i + 1] = _mm256_unpackhi_epi64(pairs[i], pairs[i + 2]);
        quads[i + 2] = _mm256_unpacklo_epi64(pairs[i + 1], pairs[i + 3]);
        quads[i + 3] = _mm256_unpackhi_epi64(pairs[i + 1], pairs[i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
        store(to + i * toBytesPerRow, _mm256_permute2x128_si256(quads[i], quads[i + 4], 0x20));
        store(to + (i + 4) * toBytesPerRow,
              _mm256_permute2x128_si256(quads[i], quads[i + 4], 0x31));
    }
}

ZORVAN_AVX2 void transposeAVX2(std::uint8_t* to, std::int64_t toBytesPerRow,
                               const std::uint8_t* from, std::int64_t fromBytesPerRow,
                               std::int64_t columns, std::int64_t rows) {
    std::int64_t x = 0;
    for (; x + 8 <= columns; x += 8) {
        const std::uint8_t* const source = from + x * fromBytesPerRow;
        // The next rows are further along the same source rows. Fetching an address outside the
        // picture does nothing.
        for (int i = 0; i < 8; ++i)
            _mm_prefetch(reinterpret_cast<const char*>(source) + i * fromBytesPerRow + rows * 4,
                         _MM_HINT_T0);
        std::int64_t y = 0;
        for (; y + 8 <= rows; y += 8)
            transpose8x8(to + y * toBytesPerRow + x * 4, toBytesPerRow, source + y * 4,
                         fromBytesPerRow);
        transposePixels(to + y * toBytesPerRow + x * 4, toBytesPerRow, source + y * 4,
                        fromBytesPerRow, 8, rows - y);
    }
    transposePixels(to + x * 4, toBytesPerRow, from + x * fromBytesPerRow, fromBytesPerRow,
                    columns - x, rows);
}

ZORVAN_AVX2 inline __m256 floats(const std::uint8_t* from) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
}

ZORVAN_AVX2 void weighRowsAVX2(float* sums, const std::uint8_t* firstRow, std::int64_t bytesPerRow,
                               const float* weights, std::int64_t rowCount,
                               std::int64_t byteCount) {
    std::int64_t i = 0;
    for (; i + 32 <= byteCount; i += 32) {
        __m256 sum[4] = {};
        for (std::int64_t k = 0; k < rowCount; ++k) {
            const __m256 weight = _mm256_set1_ps(weights[k]);
            const std::uint8_t* const bytes = firstRow + k * bytesPerRow + i;
            for (int part = 0; part < 4; ++part)
                sum[part] =
                    _mm256_add_ps(sum[part], _mm256_mul_ps(floats(bytes + part * 8), weight));
        }
        for (int part = 0; part < 4; ++part)
            _mm256_storeu_ps(sums + i + part * 8, sum[part]);
    }
    weighRows(sums + i, firstRow + i, bytesPerRow, weights, rowCount, byteCount - i);
}

constexpr PixelKernels avx2Kernels{copyAVX2,    reverseAVX2,   turnAVX2<1>,
                                   turnAVX2<3>, transposeAVX2, weighRowsAVX2};
#endif

} // namespace

const PixelKernels& pixelKernels() noexcept {
#if defined(__x86_64__)
    static const bool hasAVX2 = __builtin_cpu_supports("avx2");
    if (hasAVX2)
        return avx2Kernels;
#endif
    return plainKernels;
}

} // namespace zorvan
