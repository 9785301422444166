#include <zorvan/platform/imageio/internal/ByteSource.h>

#include <zorvan/platform/foundation/internal/openForReading.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace zorvan::imageio {
namespace {

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(Data bytes) : ByteSource(bytes.size()), bytes_(std::move(bytes)) {}

    std::size_t read(std::uint64_t offset, void* out, std::size_t count) noexcept override {
        if (offset >= bytes_.size() || count == 0)
            return 0;
        const auto start = static_cast<std::size_t>(offset);
        const std::size_t given = std::min(count, bytes_.size() - start);
        std::memcpy(out, bytes_.data() + start, given);
        return given;
    }

private:
    Data bytes_;
};

std::size_t readAt(int file, std::uint64_t offset, void* out, std::size_t count) noexcept {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = internal::uninterrupted([&] {
            return pread(file, static_cast<char*>(out) + done, count - done,
                         static_cast<off_t>(offset + done));
        });
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

/// Reads through a window, so that a walk over small headers costs one call to the system.
class FileSource final : public ByteSource {
public:
    FileSource(internal::FileDescriptor file, std::uint64_t size) noexcept
        : ByteSource(size), file_(std::move(file)) {}

    std::size_t read(std::uint64_t offset, void* out, std::size_t count) noexcept override {
        if (offset >= size())
            return 0;
        count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size() - offset));
        if (count > window_.size() / 2)
            return readAt(file_.get(), offset, out, count);
        if (offset < windowStart_ || offset + count > windowStart_ + windowSize_) {
            windowStart_ = offset;
            windowSize_ = readAt(file_.get(), offset, window_.data(), window_.size());
            count = std::min(count, windowSize_);
        }
        std::memcpy(out, window_.data() + (offset - windowStart_), count);
        return count;
    }

private:
    internal::FileDescriptor file_;
    std::uint64_t windowStart_ = 0;
    std::size_t windowSize_ = 0;
    std::array<std::byte, 8192> window_;
};

} // namespace

Data ByteSource::bytes(std::uint64_t offset, std::uint64_t count) {
    const std::uint64_t there = offset < size_ ? size_ - offset : 0;
    Data result(static_cast<std::size_t>(std::min(count, there)));
    result.resize(read(offset, result.data(), result.size()));
    return result;
}

std::unique_ptr<ByteSource> sourceOver(Data bytes) {
    return std::make_unique<MemorySource>(std::move(bytes));
}

OpenedFile sourceOfFile(const std::string& path) {
    internal::FileDescriptor file = internal::openForReading(AT_FDCWD, path.c_str());
    if (!file) {
        const int reason = errno;
        if (reason == ENOENT)
            return {nullptr, "there is no such file"};
        if (reason == EACCES || reason == EPERM)
            return {nullptr, "the file may not be read"};
        return {nullptr, "the file cannot be opened: " + std::generic_category().message(reason)};
    }
    struct stat status = {};
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {nullptr, "not a regular file"};
    const auto size = static_cast<std::uint64_t>(status.st_size);
    return {std::make_unique<FileSource>(std::move(file), size)};
}

} // namespace zorvan::imageio
