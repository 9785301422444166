#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace zorvan::imageio {

/// The bytes of a picture file, read by position. Never throws; not safe to share between threads.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    std::uint64_t size() const noexcept { return size_; }

    /// Copies up to `count` bytes from `offset`; gives how many there were.
    virtual std::size_t read(std::uint64_t offset, void* out, std::size_t count) noexcept = 0;

    /// Whether all of `out` could be filled from `offset` on.
    bool fill(std::uint64_t offset, std::span<std::byte> out) noexcept {
        return read(offset, out.data(), out.size()) == out.size();
    }

    /// `count` bytes from `offset`, or fewer where the file ends. Asks for no more memory than the
    /// file has bytes.
    Data bytes(std::uint64_t offset, std::uint64_t count);

protected:
    explicit ByteSource(std::uint64_t size) noexcept : size_(size) {}

private:
    std::uint64_t size_;
};

std::unique_ptr<ByteSource> sourceOver(Data bytes);

/// The source, or why there is none.
struct OpenedFile {
    std::unique_ptr<ByteSource> source;
    std::string error = {};
};
OpenedFile sourceOfFile(const std::string& path);

} // namespace zorvan::imageio
