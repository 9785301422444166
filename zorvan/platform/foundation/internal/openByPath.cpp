#include <zorvan/platform/foundation/internal/openByPath.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <cerrno>
#include <fcntl.h>
#include <string>

namespace zorvan::internal {

int openByPath(int folder, std::string_view path, int flags) {
    constexpr std::size_t longestStep = 4000;
    FileDescriptor reached;
    while (path.size() > longestStep) {
        const std::size_t length = path.rfind('/', longestStep);
        if (length == 0 || length == std::string_view::npos) {
            errno = ENAMETOOLONG;
            return -1;
        }
        reached = FileDescriptor(::openat(folder, std::string(path.substr(0, length)).c_str(),
                                          O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!reached)
            return -1;
        folder = reached.get();
        path.remove_prefix(length + 1);
    }
    return ::openat(folder, path.empty() ? "." : std::string(path).c_str(), flags);
}

} // namespace zorvan::internal
