#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <cstddef>
#include <memory>
#include <optional>

namespace zorvan {

namespace internal {
class DirectoryWalk;
}

/// What a directory enumerator leaves out; the sum of the options that are set.
enum class NSDirectoryEnumerationOptions : unsigned {
    none = 0, ///< Nothing.
    /// Only the directory's own entries.
    skipsSubdirectoryDescendants = 1,
    /// A directory whose extension's type conforms to the package type is an entry, but what it
    /// holds is not.
    skipsPackageDescendants = 2,
    /// No entry whose name begins with a dot, and nothing below one.
    skipsHiddenFiles = 4,
};

/// What is in either, or in both.
/// @{
constexpr NSDirectoryEnumerationOptions operator|(NSDirectoryEnumerationOptions a,
                                                  NSDirectoryEnumerationOptions b) noexcept {
    return static_cast<NSDirectoryEnumerationOptions>(static_cast<unsigned>(a) |
                                                      static_cast<unsigned>(b));
}
constexpr NSDirectoryEnumerationOptions operator&(NSDirectoryEnumerationOptions a,
                                                  NSDirectoryEnumerationOptions b) noexcept {
    return static_cast<NSDirectoryEnumerationOptions>(static_cast<unsigned>(a) &
                                                      static_cast<unsigned>(b));
}
/// @}

/// Gives everything below a directory, one URL at a time: each directory before what it holds,
/// entries in the order of the file system.
///
/// A symbolic link is an entry and is never followed. Directories that cannot be read, and entries
/// that vanish while the enumerator is under way, are passed over. Not safe to share between
/// threads.
class NSDirectoryEnumerator {
public:
    /// Null when the URL is not a file's, or when no directory can be opened there; a link to a
    /// directory is none.
    static std::shared_ptr<NSDirectoryEnumerator> create(const URL& url,
                                                         NSDirectoryEnumerationOptions options);
    /// Closes what it holds open.
    ~NSDirectoryEnumerator();

    /// The next entry; absent at the end.
    std::optional<URL> nextObject();

    /// Leaves out what the entry given last holds, when it is a directory.
    void skipDescendants() noexcept;

    /// How deep the entry given last stands: 1 for an entry of the directory itself; 0 before the
    /// first.
    std::size_t level() const noexcept;

private:
    friend class FileIterator;
    NSDirectoryEnumerator(std::unique_ptr<internal::DirectoryWalk> walk,
                          NSDirectoryEnumerationOptions options);

    bool has(NSDirectoryEnumerationOptions option) const noexcept;
    bool advance();
    bool staysClosed() const;

    std::unique_ptr<internal::DirectoryWalk> walk_;
    NSDirectoryEnumerationOptions options_;
};

} // namespace zorvan
