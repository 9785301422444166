#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// A file, a folder with all it holds, or a link, as one document: read from a place, changed, and
/// written to another.
///
/// What a file holds is read when it is asked for; until then a wrapper read from a folder holds
/// names only. Not safe to share between threads.
///
/// Errors of the system are thrown as `std::filesystem::filesystem_error`.
class NSFileWrapper {
public:
    /// What a folder holds, by name.
    using Children = std::map<std::string, std::shared_ptr<NSFileWrapper>, std::less<>>;

    /// Where a folder is read from.
    struct Place {
        Required<URL> url;
    };
    /// The bytes of a file.
    struct RegularFile {
        Required<Data> regularFileWithContents;
    };
    /// What a folder holds.
    struct Directory {
        Required<Children> directoryWithFileWrappers;
    };
    /// Where a link leads.
    struct SymbolicLink {
        Required<std::string> symbolicLinkWithDestination;
    };

    /// The folder at the URL, links to one followed, with all it holds but pipes, sockets and
    /// devices. When there is none, it is created, with those on the way to it, and the wrapper is
    /// empty. Throws, also when a file is in the way.
    static std::shared_ptr<NSFileWrapper> create(const Place& place);

    /// A file, folder or link in memory alone, without a name. Stops the program when a name of
    /// what the folder holds is empty or no name of a file.
    /// @{
    static std::shared_ptr<NSFileWrapper> create(RegularFile file);
    static std::shared_ptr<NSFileWrapper> create(Directory directory);
    static std::shared_ptr<NSFileWrapper> create(SymbolicLink link);
    /// @}

    /// Which of the three it is; it is exactly one.
    /// @{
    bool isDirectory() const noexcept { return std::holds_alternative<Children>(content_); }
    bool isSymbolicLink() const noexcept { return std::holds_alternative<Link>(content_); }
    bool isRegularFile() const noexcept { return !isDirectory() && !isSymbolicLink(); }
    /// @}

    /// The name it was read under; empty for one that was not read.
    const std::string& filename() const noexcept { return filename_; }

    /// The name it is to have in a folder that it is added to: at first that it was read under.
    /// @{
    const std::string& preferredFilename() const noexcept { return preferredFilename_; }
    void setPreferredFilename(std::string name) { preferredFilename_ = std::move(name); }
    /// @}

    /// What a folder holds, by name. Stops the program when this is no folder.
    const Children& fileWrappers() const;

    /// What a file holds; absent when this is no file. Throws when the file it was read from can no
    /// longer be read, or is another by now, unless it was written by the folder that holds this.
    std::optional<Data> regularFileContents() const;

    /// Where a link leads, as it is written in it; absent when this is no link.
    std::optional<std::string> symbolicLinkDestination() const;

    /// Adds to a folder, under the preferred name, or that numbered as in "photo (0).jpg" when it
    /// is taken. Gives the name. Stops the program when this is no folder, when the preferred name
    /// is empty or no name of a file, and when the child holds this folder.
    std::string addFileWrapper(const std::shared_ptr<NSFileWrapper>& child);

    /// Takes a child out of a folder; one that it does not hold is passed over. Stops the program
    /// when this is no folder.
    void removeFileWrapper(const std::shared_ptr<NSFileWrapper>& child);

    /// Writes all of it in the place of what is at the URL, which may be where it was read from.
    /// What is there is whole at every moment, the old or the new, as with
    /// `NSFileManager::overwritingCopy`. Folders keep the permissions they were read with. Files
    /// that were read from what is replaced are read from the new one from then on. Throws.
    void write(const URL& url) const;

private:
    struct Link {
        std::string destination;
    };
    struct Source; // where a file was read from
    using SharedSource = std::shared_ptr<const Source>;
    /// A file is where it was read from, or its bytes.
    using Content = std::variant<SharedSource, Data, Link, Children>;
    using Moves = std::vector<std::pair<NSFileWrapper*, SharedSource>>;

    explicit NSFileWrapper(Content content) : content_(std::move(content)) {}

    static std::shared_ptr<NSFileWrapper> of(Content content);
    static std::shared_ptr<NSFileWrapper> read(const std::string& path);
    static Children readChildren(const std::string& path);
    Children& children();
    bool holds(const NSFileWrapper& other) const;
    static SharedSource sourceAt(const std::string& path, std::string later);
    Moves movesFrom(const std::string& place, const std::string& written,
                    const std::string& later) const;
    void writeTo(const std::string& path) const;
    std::optional<mode_t> writeClosed(const std::string& path) const;
    mode_t writeFolder(const std::string& path) const;

    Content content_;
    std::optional<mode_t> permissions_; // of a folder that was read
    std::string filename_;
    std::string preferredFilename_;
};

} // namespace zorvan
