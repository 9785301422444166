#include <zorvan/platform/bookmarks/internal/FileHandle.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>

#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr char deletedMark[] = " (deleted)";

/// A `file_handle` with room for its bytes.
class HandleBuffer {
public:
    explicit HandleBuffer(std::size_t size) : storage_(sizeof(file_handle) + size) {
        get()->handle_bytes = static_cast<unsigned>(size);
    }
    file_handle* get() { return reinterpret_cast<file_handle*>(storage_.data()); }

private:
    std::vector<std::max_align_t> storage_; // more than is needed, but aligned
};

} // namespace

FileHandle FileHandle::of(const std::string& path) {
    HandleBuffer buffer(MAX_HANDLE_SZ);
    int mount = 0;
    if (::name_to_handle_at(AT_FDCWD, systemPath(path), buffer.get(), &mount, 0) != 0)
        return {};
    const auto* bytes = reinterpret_cast<const std::byte*>(buffer.get()->f_handle);
    return {buffer.get()->handle_type, Data(bytes, bytes + buffer.get()->handle_bytes)};
}

std::string FileHandle::currentPath(const std::string& neighbour) const {
    if (bytes.empty() || bytes.size() > MAX_HANDLE_SZ)
        return {};
    const FileDescriptor volume(::open(neighbour.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!volume)
        return {};
    HandleBuffer buffer(bytes.size());
    buffer.get()->handle_type = type;
    std::memcpy(buffer.get()->f_handle, bytes.data(), bytes.size());
    const FileDescriptor file(::open_by_handle_at(volume.get(), buffer.get(), O_PATH | O_CLOEXEC));
    if (!file)
        return {};
    std::string path(PATH_MAX, '\0');
    const ssize_t size = ::readlink(file.path().c_str(), path.data(), path.size());
    struct stat status {};
    const bool isGone = ::fstat(file.get(), &status) != 0 || status.st_nlink == 0;
    path.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return isGone || !path.starts_with('/') || path.ends_with(deletedMark) ? std::string() : path;
}

} // namespace zorvan::internal
