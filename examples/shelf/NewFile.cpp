#include "NewFile.h"

#include <zorvan/files/NSFileManager.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

using namespace zorvan;

namespace {

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

/// A file without a name, which vanishes with the process. Where the file system has no such thing,
/// one with a name of its own.
class NamelessFile {
public:
    explicit NamelessFile(const URL& folder) {
        descriptor_ = ::open(folder.path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
        if (descriptor_ >= 0)
            return;
        path_ =
            folder
                .appendingPathComponent("." + std::string(NSFileManager::defaultManager()
                                                              ->temporaryURL({.pathExt = "part"})
                                                              .lastPathComponent()))
                .path();
        descriptor_ = ::open(path_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        if (descriptor_ < 0)
            fail();
    }
    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;
    ~NamelessFile() {
        ::close(descriptor_);
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    void write(const Data& bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t count = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
            if (count < 0 && errno != EINTR)
                fail();
            done += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }

    /// False when the name is taken.
    bool takeName(const std::string& name) {
        const std::string nameless = "/proc/self/fd/" + std::to_string(descriptor_);
        const int result =
            path_.empty()
                ? ::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW)
                : ::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE);
        if (result == 0)
            path_.clear();
        else if (errno != EEXIST)
            fail();
        return result == 0;
    }

private:
    int descriptor_ = -1;
    std::string path_; // empty when it has no name, or has its final one
};

} // namespace

URL writeNewFile(const URL& wanted, const Data& bytes) {
    NamelessFile file(wanted.deletingLastPathComponent());
    file.write(bytes);
    for (;;) {
        URL url = NSFileManager::defaultManager()->availableItemURL(wanted);
        if (file.takeName(url.path()))
            return url;
    }
}
