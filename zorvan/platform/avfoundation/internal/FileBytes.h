#pragma once

#include <cstdint>
#include <memory>
#include <string>

extern "C" {
#include <libavformat/avio.h>
}

namespace zorvan::avfoundation {

/// The bytes of one regular file as FFmpeg reads them. What is open is this file and no other: the
/// names that a container holds lead nowhere.
class FileBytes {
public:
    /// Empty when the path leads to no regular file that can be read.
    static std::unique_ptr<FileBytes> open(const std::string& path);
    ~FileBytes();
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    AVIOContext* context() const noexcept { return context_; }

private:
    FileBytes(int descriptor, std::int64_t size) : descriptor_(descriptor), size_(size) {}
    static int read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int whence);

    const int descriptor_;
    const std::int64_t size_;
    std::int64_t position_ = 0;
    AVIOContext* context_ = nullptr;
};

} // namespace zorvan::avfoundation
