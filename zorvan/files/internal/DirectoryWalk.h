#pragma once

#include <zorvan/files/NSDirectoryEnumerator.h>

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace zorvan::files {

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
    /// Absent when the directory cannot be opened.
    static std::unique_ptr<DirectoryWalk> open(std::string path,
                                               NSDirectoryEnumerationOptions options);

    DirectoryWalk(const DirectoryWalk&) = delete;
    DirectoryWalk& operator=(const DirectoryWalk&) = delete;
    ~DirectoryWalk();

    /// Goes on to the next entry; false at the end. The accessors below speak of this entry, until
    /// the next call.
    bool advance();

    std::string_view name() const noexcept { return std::string_view(path_).substr(nameStart_); }
    const std::string& path() const noexcept { return path_; }
    EntryKind kind() const noexcept { return kind_; }

    /// How deep the entry stands: 1 directly in the walked directory.
    std::size_t level() const noexcept { return entryLevel_; }

    /// Whether the entry is a link that leads to something that exists and is no directory.
    bool linkLeadsToFile() const;

    /// Leaves out what the entry holds, when it is a directory.
    void skipDescendants() noexcept { descendIntoEntry_ = false; }

private:
    /// A directory that is being read.
    struct Level {
        int descriptor = -1;
        std::size_t pathLength = 0; // how much of the path names this directory
        std::vector<char> records;  // as the kernel wrote them, up to `end`
        std::size_t position = 0;   // of the next record
        std::size_t end = 0;
        bool isComplete = false; // whether nothing is left to read from the descriptor
        dev_t device = 0;        // which directory it is; known when the descriptor was given up
        ino_t inode = 0;
    };

    explicit DirectoryWalk(NSDirectoryEnumerationOptions options) : options_(options) {}

    bool has(NSDirectoryEnumerationOptions option) const noexcept;
    void enter(int descriptor);
    void enterEntry();
    int openEntry();
    void leave();
    bool takeRecord(Level& level);
    bool fill(Level& level);
    EntryKind kindOnDisk() const;

    bool giveUpOldestDescriptor();
    void readRest(Level& level);
    void reopen(Level& level, int child);
    int reopenByPath(std::size_t pathLength) const;

    NSDirectoryEnumerationOptions options_;
    std::deque<Level> levels_;
    std::vector<std::vector<char>> spareBuffers_;
    std::size_t firstOpenLevel_ = 0; // every level from here on has its descriptor
    std::string path_;
    std::size_t nameStart_ = 0;
    std::size_t entryLevel_ = 0;
    EntryKind kind_ = EntryKind::file;
    bool descendIntoEntry_ = false;
};

} // namespace zorvan::files
