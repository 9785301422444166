#include <zorvan/media/internal/writeFileAtomically.h>

#include <zorvan/platform/foundation/UUID.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan {
namespace {

/// A file beside the one that is to be written; gone with this object unless it was moved.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& path)
        : path_(path),
          descriptor_(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (descriptor_ >= 0)
            close(descriptor_);
        if (descriptor_ >= 0 && !isMoved_)
            unlink(path_.c_str());
    }

    bool isOpen() const noexcept { return descriptor_ >= 0; }

    bool write(const Data& bytes) const {
        std::size_t written = 0;
        while (written < bytes.size()) {
            const ssize_t count =
                ::write(descriptor_, bytes.data() + written, bytes.size() - written);
            if (count < 0 && errno != EINTR)
                return false;
            if (count > 0)
                written += static_cast<std::size_t>(count);
        }
        return fsync(descriptor_) == 0;
    }

    bool takePermissionsOf(const std::string& path) const {
        struct stat status;
        return stat(path.c_str(), &status) != 0 || fchmod(descriptor_, status.st_mode & 07777) == 0;
    }

    bool moveTo(const std::string& path) {
        isMoved_ = std::rename(path_.c_str(), path.c_str()) == 0;
        return isMoved_;
    }

private:
    std::string path_;
    int descriptor_;
    bool isMoved_ = false;
};

} // namespace

bool writeFileAtomically(const URL& url, const Data& bytes) {
    // A link stays a link: what it leads to is replaced.
    const URL target = url.resolvingSymlinksInPath();
    const URL beside =
        target.deletingLastPathComponent().appendingPathComponent(".zorvan-" + makeUUIDString());
    TemporaryFile file(beside.path());
    return file.isOpen() && file.write(bytes) && file.takePermissionsOf(target.path()) &&
           file.moveTo(target.path());
}

} // namespace zorvan
