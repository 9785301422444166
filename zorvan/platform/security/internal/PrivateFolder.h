#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace zorvan::security {

/// A folder that is the user's alone: theirs, mode 0700, and no symbolic link. Everything that can
/// fail throws `Failure`: `errSecAuthFailed` when something is not the user's alone.
class PrivateFolder {
public:
    /// Where the user's secure items are: below `$XDG_DATA_HOME`, else "~/.local/share".
    static std::string standardPath();

    explicit PrivateFolder(std::string path) : path_(std::move(path)) {}

    const std::string& path() const noexcept { return path_; }
    std::string path(const char* name) const { return path_ + '/' + name; }

    /// Whether it is there.
    bool exists() const;
    /// Makes it, and the folders around it, unless it is there.
    void create() const;
    /// What the file system has of something in it, whatever that is; absent when there is nothing.
    std::optional<struct stat> statusOfAny(const char* name) const;
    /// What the file system has of a file; absent when it is not there. It must be a plain file of
    /// the user's, mode 0600, under this name only.
    std::optional<struct stat> statusOfFile(const char* name) const;
    /// Makes an empty file, unless there is one.
    void createFile(const char* name) const;
    /// Keeps it open, so that its files are found without its path.
    void open();
    /// Whether what is open is what is there under its path.
    bool isInPlace() const;
    /// Makes what happened to the names in it last.
    void sync() const;

private:
    struct Open {
        internal::FileDescriptor descriptor;
        dev_t device;
        ino_t node;
    };

    std::optional<struct stat> status() const;

    std::string path_;
    std::shared_ptr<const Open> open_; // null until it is
};

} // namespace zorvan::security
