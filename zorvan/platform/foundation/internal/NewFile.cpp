#include <zorvan/platform/foundation/internal/NewFile.h>

#include <zorvan/platform/foundation/internal/placeItem.h>

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>

namespace zorvan::internal {

namespace {

/// A file without a name, where the volume has such, and it can be given one later.
FileDescriptor namelessFile(const std::string& folder, mode_t mode) {
    FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    return file && ::access(file.path().c_str(), F_OK) == 0 ? std::move(file) : FileDescriptor();
}

int linked(const FileDescriptor& file, const std::string& path) {
    const int result =
        ::linkat(AT_FDCWD, file.path().c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW);
    return result == 0 ? 0 : errno;
}

} // namespace

NewFile::NewFile(const std::string& scratchName, mode_t mode)
    : file_(namelessFile(folderOf(scratchName), mode)) {
    if (file_) {
        removeUnfinished(folderOf(scratchName));
        return;
    }
    scratch_.emplace(scratchName);
    file_ = FileDescriptor(
        ::open(scratchName.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    error_ = file_ ? 0 : errno;
}

int NewFile::write(std::span<const std::byte> bytes) const noexcept {
    return writeAll(file_.get(), bytes);
}

int NewFile::synchronise() const noexcept { return ::fsync(file_.get()) == 0 ? 0 : errno; }

int NewFile::place(const std::string& path) {
    return scratch_ ? placeItem(scratch_->path(), path) : linked(file_, path);
}

int NewFile::replace(const std::string& path) {
    if (scratch_)
        return replaceItem(path, scratch_->path(), file_.get());
    const Scratch name = Scratch::beside(path);
    const int error = linked(file_, name.path());
    return error == 0 ? replaceItem(path, name.path(), file_.get()) : error;
}

} // namespace zorvan::internal
