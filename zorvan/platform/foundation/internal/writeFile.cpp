#include <zorvan/platform/foundation/internal/writeFile.h>

#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <array>
#include <cerrno>
#include <climits>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan::internal {

namespace {

/// What a path names when links that it ends with are followed, and be it nothing.
std::string followed(std::string path) {
    constexpr int longestChain = 40; // as in the kernel
    std::array<char, PATH_MAX> target;
    for (int i = 0; i < longestChain; ++i) {
        const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
        if (length <= 0)
            break;
        const std::string next(target.data(), static_cast<std::size_t>(length));
        path = next.starts_with('/') ? next : folderOf(path) + '/' + next;
    }
    return path;
}

int putInPlace(NewFile& file, const std::string& path) {
    const int error = file.place(path);
    if (error == 0)
        synchroniseFolder(folderOf(path));
    return error == EEXIST ? file.replace(path) : error;
}

int written(const std::string& path, std::span<const std::byte> bytes) {
    if (hasNUL(path))
        return EINVAL;
    struct stat old {};
    const bool isThere = ::stat(path.c_str(), &old) == 0;
    if (!isThere && errno != ENOENT)
        return errno;
    if (isThere && !S_ISREG(old.st_mode))
        return S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
    // Nobody who may not read the old file may read the new one before it has the same mode.
    const std::string target = followed(path);
    NewFile file(Scratch::pathBeside(target), isThere ? 0600 : 0666);
    if (file.error() != 0)
        return file.error();
    if (const int error = file.write(bytes))
        return error;
    if (const int error = file.synchronise())
        return error;
    return putInPlace(file, target);
}

} // namespace

std::error_code writeFile(const std::string& path, std::span<const std::byte> bytes) {
    return {written(path, bytes), std::generic_category()};
}

} // namespace zorvan::internal
