#include <zorvan/platform/messagebus/internal/SocketDirectory.h>

#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace zorvan::internal {

namespace {

constexpr const char* folderName = "/zorvan-notifications";
constexpr std::string_view suffix = ".socket";
constexpr timeval connectTimeout{1, 0};

/// A socket address holds little more than a hundred bytes, so addresses go through `/proc`.
std::optional<sockaddr_un> address(const std::string& path) {
    sockaddr_un result{};
    result.sun_family = AF_UNIX;
    if (path.size() >= sizeof result.sun_path)
        return std::nullopt;
    std::memcpy(result.sun_path, path.c_str(), path.size() + 1);
    return result;
}

FileDescriptor openFolder(const std::string& path) {
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status;
    if (!folder || ::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid() ||
        (status.st_mode & 0077) != 0)
        return {};
    return folder;
}

} // namespace

bool isOwnUsers(int socket) noexcept {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
}

std::optional<SocketDirectory> SocketDirectory::open() {
    const std::optional<std::string> runtime = internal::pathFromEnvironment("XDG_RUNTIME_DIR");
    if (!runtime || !openFolder(*runtime))
        return std::nullopt;
    const std::string path = *runtime + folderName;
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        return std::nullopt;
    FileDescriptor folder = openFolder(path);
    FileDescriptor changes(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!folder || !changes)
        return std::nullopt;
    SocketDirectory directory(std::move(folder), std::move(changes));
    if (::inotify_add_watch(directory.changes_.get(), directory.path("").c_str(),
                            IN_MOVED_TO | IN_DELETE | IN_ONLYDIR) < 0)
        return std::nullopt;
    return directory;
}

std::string SocketDirectory::path(const std::string& name) const {
    return directory_.path() + "/" + name;
}

FileDescriptor SocketDirectory::listen() const {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const std::string name = makeUUIDString();
    const std::string listening = name + std::string(suffix);
    const auto place = address(path(name));
    // The file takes the mode of the socket; it moves to its final name once connecting works.
    if (!socket || !place || ::fchmod(socket.get(), 0600) != 0 ||
        ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&*place), sizeof *place) != 0)
        return {};
    if (::listen(socket.get(), SOMAXCONN) != 0 ||
        ::renameat(directory_.get(), name.c_str(), directory_.get(), listening.c_str()) != 0) {
        ::unlinkat(directory_.get(), name.c_str(), 0);
        return {};
    }
    return socket;
}

FileDescriptor SocketDirectory::connect(const std::string& name) const {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto place = address(path(name));
    if (!socket || !place)
        return {};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &connectTimeout, sizeof connectTimeout);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*place), sizeof *place) != 0) {
        if (errno == ECONNREFUSED)
            ::unlinkat(directory_.get(), name.c_str(), 0);
        return {};
    }
    return isOwnUsers(socket.get()) ? std::move(socket) : FileDescriptor();
}

const std::set<std::string>& SocketDirectory::names() {
    if (hasChanged() || !scanned_)
        scan();
    return names_;
}

bool SocketDirectory::hasChanged() const {
    bool changed = false;
    alignas(inotify_event) std::array<char, 4096> events;
    while (::read(changes_.get(), events.data(), events.size()) > 0)
        changed = true;
    return changed;
}

void SocketDirectory::scan() {
    names_.clear();
    scanned_ = true;
    const std::unique_ptr<DIR, Release<::closedir>> entries(::opendir(path("").c_str()));
    if (!entries)
        return;
    while (const dirent* entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name.ends_with(suffix))
            names_.emplace(name);
    }
}

} // namespace zorvan::internal
