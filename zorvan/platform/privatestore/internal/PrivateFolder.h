#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/privatestore/internal/Refusal.h>

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace zorvan::privatestore {

/// A folder with files that are the user's alone: theirs, mode 0600, plain files under one name
/// each. The folder is theirs too, and no symbolic link.
///
/// Throws `Refusal` when something is not so, and `std::system_error`.
class PrivateFolder {
public:
    /// What is done about what other users can reach.
    enum class Policy {
        refuse,     ///< It is not used: it may be known to others, or changed by them.
        close,      ///< The folder and the files are closed to them.
        closeFiles, ///< The files are; they may read the folder, but not write it.
    };

    PrivateFolder(std::string path, Policy policy) : path_(std::move(path)), policy_(policy) {}

    /// As it was given.
    const std::string& path() const noexcept { return path_; }
    /// The path of something in it; once it is open, without a symbolic link on the way.
    std::string path(const std::string& name) const;

    /// Whether it is there.
    bool exists() const;
    /// Makes it, and the folders around it, unless it is there.
    void create() const;
    /// Keeps it open, so that its files are found without its path. Closes it to others where that
    /// is the policy.
    void open();
    /// Whether what is open is what is there under its path.
    bool isInPlace() const;
    /// Makes what happened to the names in it last.
    void sync() const;

    /// Until it is released, nobody else has the lock. Waits for others, but not for ever:
    /// ETIMEDOUT. Where the volume has no locks it is empty.
    zorvan::internal::FileDescriptor lock() const;

    /// What the file system has of something in it, whatever that is; absent when there is nothing.
    std::optional<struct stat> statusOfAny(const std::string& name) const;
    /// What the file system has of a file; absent when it is not there.
    std::optional<struct stat> statusOfFile(const std::string& name) const;
    /// Makes an empty file, unless there is one.
    void createFile(const std::string& name) const;
    /// A file for reading; empty when it is not there. Not to be used for one that a database is
    /// in: closing it would drop the locks that the database has on it.
    zorvan::internal::FileDescriptor openFile(const std::string& name) const;

private:
    struct Open {
        zorvan::internal::FileDescriptor descriptor;
        struct stat status;
        std::string realPath;
    };

    void check(const struct stat& folder) const;
    void checkFile(const struct stat& file) const;

    std::string path_;
    Policy policy_;
    std::shared_ptr<const Open> open_; // null until it is
};

} // namespace zorvan::privatestore
