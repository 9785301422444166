#include <zorvan/platform/foundation/internal/readRegularFile.h>

#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/openForReading.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

std::nullopt_t refused(int error) noexcept {
    errno = error;
    return std::nullopt;
}

} // namespace

std::optional<std::string> readRegularFile(const std::string& path, std::size_t most) {
    if (hasNUL(path))
        return refused(EINVAL);
    struct stat status {};
    const FileDescriptor file = openRegularFile(AT_FDCWD, path.c_str(), status);
    if (!file)
        return std::nullopt;
    if (std::cmp_greater(status.st_size, most))
        return refused(EFBIG);
    std::string text;
    // To the end, whatever the size said: files of some file systems say 0.
    for (std::vector<char> chunk(std::clamp<std::size_t>(most, 1, 65536));;) {
        const ssize_t count =
            uninterrupted([&] { return ::read(file.get(), chunk.data(), chunk.size()); });
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return text;
        text.append(chunk.data(), static_cast<std::size_t>(count));
        if (text.size() > most)
            return refused(EFBIG);
    }
}

} // namespace zorvan::internal
