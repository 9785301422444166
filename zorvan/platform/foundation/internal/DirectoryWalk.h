#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace zorvan::internal {

enum class EntryKind { file, directory, link };

/// Visits everything below a directory, each directory before what it holds, in the order of the
/// file system. Costs a read of each directory; an entry is asked for its kind only where the
/// directory does not tell it.
///
/// A link to a directory is an entry like another and never entered, so links cannot lead in
/// circles. What cannot be opened is not entered. The depth of the tree is bounded by memory alone:
/// levels far above the current one give up their file descriptor and are found again on the way
/// back.
class DirectoryWalk {
public:
    enum class Visits {
        before, // each directory before what it holds
        around, // each directory that is entered a second time, after what it holds
    };

    /// Absent when the directory cannot be opened, with the reason in `errno`.
    static std::unique_ptr<DirectoryWalk> open(std::string path, Visits visits = Visits::before);

    DirectoryWalk(const DirectoryWalk&) = delete;
    DirectoryWalk& operator=(const DirectoryWalk&) = delete;

    /// Goes on to the next entry; false at the end. The accessors below speak of this entry, until
    /// the next call.
    bool advance();

    /// Ends with a NUL in memory.
    std::string_view name() const noexcept { return std::string_view(path_).substr(nameStart_); }
    const std::string& path() const noexcept { return path_; }
    EntryKind kind() const noexcept { return kind_; }

    /// Whether this is the second visit of a directory.
    bool isLeaving() const noexcept { return isLeaving_; }

    /// The directory that the entry stands in; -1 when it was not found again.
    int folder() const noexcept { return levels_.back().descriptor.get(); }

    /// How deep the entry stands: 1 directly in the walked directory.
    std::size_t level() const noexcept { return entryLevel_; }

    /// Leaves out what the entry holds, when it is a directory.
    void skipDescendants() noexcept { descendIntoEntry_ = false; }

    /// The error number of the first directory that could not be opened, read or found again; 0 as
    /// long as nothing was passed over.
    int error() const noexcept { return error_; }

private:
    /// A directory that is being read.
    struct Level {
        FileDescriptor descriptor;
        std::size_t pathLength = 0; // how much of the path names this directory
        std::vector<char> records;  // as the kernel wrote them, up to `end`
        std::size_t position = 0;   // of the next record
        std::size_t end = 0;
        bool isComplete = false; // whether nothing is left to read from the descriptor
        dev_t device = 0;        // which directory it is; known when the descriptor was given up
        ino_t inode = 0;
    };

    explicit DirectoryWalk(Visits visits) : visits_(visits) {}

    void enter(FileDescriptor descriptor);
    void enterEntry();
    FileDescriptor openEntry();
    void leave();
    bool takeRecord(Level& level);
    bool fill(Level& level);
    EntryKind kindOnDisk() const;

    bool giveUpOldestDescriptor();
    void readRest(Level& level);
    void reopen(Level& level, const FileDescriptor& child);
    void noteError(int error) noexcept;

    Visits visits_;
    std::deque<Level> levels_;
    std::vector<std::vector<char>> spareBuffers_;
    std::size_t firstOpenLevel_ = 0; // every level from here on has its descriptor
    std::string path_;
    std::size_t nameStart_ = 0;
    std::size_t entryLevel_ = 0;
    EntryKind kind_ = EntryKind::file;
    bool descendIntoEntry_ = false;
    bool isLeaving_ = false;
    int error_ = 0;
};

} // namespace zorvan::internal
