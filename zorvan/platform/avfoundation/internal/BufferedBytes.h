#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include <unistd.h>

namespace zorvan::avfoundation {

/// A file, read through a buffer, or bytes that are all in the buffer. Past the end are zeros.
class BufferedBytes {
public:
    BufferedBytes(int file, std::int64_t size) : file_(file), size_(size) {}
    explicit BufferedBytes(std::string bytes) : size_(std::ssize(bytes)), buffer_(std::move(bytes)) {}

    std::int64_t size() const { return size_; }
    std::array<char, 16> at(std::int64_t position) {
        std::array<char, 16> bytes = {};
        copy(position, bytes.data(), bytes.size());
        return bytes;
    }
    /// `to` is zeros already.
    void copy(std::int64_t position, char* to, std::size_t count) {
        const std::int64_t last = std::ssize(buffer_) - static_cast<std::int64_t>(count);
        if (file_ >= 0 && (position < start_ || position - start_ > last))
            fill(position, std::max<std::size_t>(count, 4096));
        if (const std::int64_t offset = position - start_; offset < std::ssize(buffer_))
            buffer_.copy(to, count, static_cast<std::size_t>(offset));
    }

private:
    void fill(std::int64_t position, std::size_t count) {
        buffer_.resize(count);
        const ssize_t read = ::pread(file_, buffer_.data(), count, position);
        buffer_.resize(static_cast<std::size_t>(std::max<ssize_t>(read, 0)));
        start_ = position;
    }

    const int file_ = -1;
    const std::int64_t size_;
    std::int64_t start_ = 0;
    std::string buffer_;
};

} // namespace zorvan::avfoundation
