#include <zorvan/platform/avfoundation/internal/FileBytes.h>

#include <cerrno>
#include <cstdio>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace zorvan::avfoundation {
namespace {

constexpr int bufferSize = 1 << 15;

} // namespace

std::unique_ptr<FileBytes> FileBytes::open(const std::string& path) {
    // Without O_NONBLOCK the opening of a pipe would wait for somebody to write.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return nullptr;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return nullptr;
    }
    std::unique_ptr<FileBytes> file(new FileBytes(descriptor, status.st_size));
    auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    if (buffer)
        file->context_ = avio_alloc_context(buffer, bufferSize, 0, file.get(), &FileBytes::read,
                                            nullptr, &FileBytes::seek);
    if (!file->context_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    return file;
}

FileBytes::~FileBytes() {
    if (context_)
        av_freep(&context_->buffer);
    avio_context_free(&context_);
    close(descriptor_);
}

int FileBytes::read(void* self, std::uint8_t* buffer, int size) {
    auto& file = *static_cast<FileBytes*>(self);
    ssize_t count = 0;
    do
        count = pread(file.descriptor_, buffer, static_cast<std::size_t>(size), file.position_);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        return AVERROR(errno);
    if (count == 0)
        return AVERROR_EOF;
    file.position_ += count;
    return static_cast<int>(count);
}

std::int64_t FileBytes::seek(void* self, std::int64_t offset, int whence) {
    auto& file = *static_cast<FileBytes*>(self);
    if (whence == AVSEEK_SIZE)
        return file.size_;
    std::int64_t base = 0;
    if ((whence & ~AVSEEK_FORCE) == SEEK_CUR)
        base = file.position_;
    else if ((whence & ~AVSEEK_FORCE) == SEEK_END)
        base = file.size_;
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0)
        return AVERROR(EINVAL);
    return file.position_ = target;
}

} // namespace zorvan::avfoundation
