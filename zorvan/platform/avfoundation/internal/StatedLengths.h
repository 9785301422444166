#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zorvan::avfoundation {

/// What a file says of the length of something, for which FFmpeg takes and clears memory before it
/// looks whether the file is as long.
class StatedLengths {
public:
    /// The most bytes of one statement.
    static constexpr std::size_t longest = 18;

    /// Knows none of any file.
    StatedLengths() = default;
    /// `format` is a name of FFmpeg's, and outlives this.
    StatedLengths(std::string_view format, int file, std::int64_t size);

    /// Whether no statement that is whole within these bytes of the file goes far beyond its end.
    /// `rest` is how many bytes there are from the first of them on.
    bool fit(std::string_view bytes, std::int64_t rest) const noexcept;

private:
    std::string_view format_;
    bool isBigEndian_ = true;
};

} // namespace zorvan::avfoundation
