#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <optional>
#include <set>
#include <string>

namespace zorvan::internal {

/// The folder where each process of the session that takes part keeps a listening socket.
class SocketDirectory {
public:
    /// Absent when there is no run-time directory, or when it, or the folder in it, is not the
    /// user's alone.
    static std::optional<SocketDirectory> open();

    /// A listening socket under a new name; none on failure. The name shows up once it listens.
    FileDescriptor listen() const;

    /// A connection, after a check that it is the user's process that listens; none on failure.
    /// What a process that has ended left behind is removed.
    FileDescriptor connect(const std::string& name) const;

    /// The names there now. As cheap as one read while nothing changes.
    const std::set<std::string>& names();

private:
    SocketDirectory(FileDescriptor directory, FileDescriptor changes)
        : directory_(std::move(directory)), changes_(std::move(changes)) {}

    std::string path(const std::string& name) const;
    bool hasChanged() const;
    void scan();

    FileDescriptor directory_;
    FileDescriptor changes_;
    std::set<std::string> names_;
    bool scanned_ = false;
};

/// Whether the process at the other end of a local socket is one of this user.
bool isOwnUsers(int socket) noexcept;

} // namespace zorvan::internal
