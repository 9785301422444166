#pragma once

#include <zorvan/files/NSDirectoryEnumerator.h>
#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

/// What applications do with files around their documents. Has no state; safe from every thread.
///
/// Where a call says that it throws, it throws `std::filesystem::filesystem_error` with the error
/// of the system; a URL that is not a file's, or whose path holds a NUL, is
/// `std::errc::invalid_argument`.
class NSFileManager {
public:
    /// What stands at a place.
    struct Content {
        bool exist = false; ///< Whether anything does.
        bool isDir = false; ///< Whether it is a directory; false when nothing is there.
    };
    /// The extension to take, without its dot; empty for none.
    struct PathExtension {
        std::string_view pathExt;
    };
    /// The URL whose extension to take.
    struct Model {
        Required<URL> for_;
    };
    /// The extension to take, and whose folder.
    struct PathExtensionInBundle {
        std::string_view pathExt;                         ///< Without its dot; empty for none.
        Required<std::shared_ptr<const NSBundle>> bundle; ///< Must not be null.
    };
    /// The URL whose extension to take, and whose folder.
    struct ModelInBundle {
        Required<URL> for_;                               ///< Asked for its path extension only.
        Required<std::shared_ptr<const NSBundle>> bundle; ///< Must not be null.
    };
    /// Whether to look into sub-folders.
    struct Recursive {
        bool recursive;
    };

    /// The one there is.
    static const std::shared_ptr<NSFileManager>& defaultManager();

    /// What stands at the URL, symbolic links followed: a link that leads nowhere does not exist,
    /// nor does anything at a URL that is not a file's.
    Content contentExists(const URL& url) const;

    // Folders.

    /// "/Users/", the login name, "/": where the files of users stand on systems that keep
    /// programs in sandboxes. Made of text alone; it need not exist.
    /// @{
    std::string noSandboxHomePath() const;
    URL noSandboxHomeURL() const;
    /// @}

    /// The folder of the main bundle's name in "Library/Application Support" of `noSandboxHomeURL`.
    /// Absent when the main bundle has no "CFBundleName".
    std::optional<URL> noSandboxBundleSupportDirectoryURL() const;

    /// The folder for what the program keeps for its user: of the main bundle's name, in
    /// `$XDG_DATA_HOME`, else in ".local/share" of the home folder. Absent when the main bundle has
    /// no "CFBundleName", or the user no home. Nothing is created.
    std::optional<URL> bundleSupportDirectoryURL() const;

    /// Creates a folder, and those on the way to it that are missing. With a component, the folder
    /// of that name in it. A folder that is there already is left alone. Gives the URL of the
    /// folder. Throws.
    /// @{
    URL createDirectory(const URL& url) const;
    URL createDirectory(const URL& url, std::string_view pathComponent) const;
    /// @}

    /// Creates `bundleSupportDirectoryURL`, or a folder in it. Absent when that is absent or cannot
    /// be created.
    /// @{
    std::optional<URL> createBundleSupportDirectory() const;
    std::optional<URL> createBundleSupportDirectoryWithComponent(std::string_view component) const;
    /// @}

    // Names for new files.

    /// A URL for a new file in the directory for temporary files (`$TMPDIR`, else "/tmp"), named by
    /// a UUID; with the extension unless it is empty. Nothing is created.
    URL temporaryURL(PathExtension argument = {}) const;

    /// The same with the path extension of `for_`.
    URL temporaryURL(Model argument) const;

    /// The same in a folder that is named by the bundle's identifier, and created for the user
    /// alone; where it is the user's already and others may write to it, they may not any more. It
    /// is named by a UUID when the bundle has no identifier, or one that is no name of a file, and
    /// when what has that name already is no folder of the user's that can be opened. When creating
    /// it fails, so will making the file.
    /// @{
    URL temporaryURL(const PathExtensionInBundle& argument) const;
    URL temporaryURL(const ModelInBundle& argument) const;
    /// @}

    /// The URL itself when nothing exists there, else the first free one of "photo (0).jpg",
    /// "photo (1).jpg" and so on beside it. A symbolic link takes its name even when it leads
    /// nowhere.
    ///
    /// Another process may take the name before you do, and a numbered name may be longer than the
    /// 255 bytes that a name can have. The calls below take the name in the same step, and make
    /// it fit.
    URL availableItemURL(const URL& url) const;

    /// The same for a name in a directory.
    URL availableItemURL(std::string_view name, const URL& directory) const;

    /// Creates a file, or a folder, at the first of the names of `availableItemURL` that is free,
    /// and gives its URL. Where the number makes a name too long, its title loses as many
    /// characters as that takes. However many processes call it at once, each gets a name of its
    /// own, and nothing that exists is touched. The file appears in one step, with all its bytes;
    /// the disk is not waited for. Throws.
    /// @{
    URL createAvailableFile(const URL& url, std::span<const std::byte> contents = {}) const;
    URL createAvailableDirectory(const URL& url) const;
    /// @}

    /// Moves an item to the first of those names that is free, with the same promise. Between
    /// volumes the item is copied first, and removed when the copy has its name and is on the disk.
    /// Throws; when the item cannot be removed, the copy stays, and is the second path of the
    /// error.
    URL moveItemToAvailableURL(const URL& item, const URL& url) const;

    // Attributes, of a link its own.

    /// When the item's content changed last, or when it was created. Absent when that cannot be
    /// found out; not every file system keeps the date of creation.
    /// @{
    std::optional<Date> modifyDateForFile(const URL& url) const;
    std::optional<Date> createDateForFile(const URL& url) const;
    /// @}

    /// The size in units of 1024 bytes, the rest dropped. Absent when it cannot be found out.
    std::optional<std::int64_t> sizeInMoOfItem(const URL& url) const;

    // Copies and lists.

    /// Copies a file, a link, or a folder with all it holds, in the place of what is at the
    /// destination. Whatever happens, and be it the end of the process, what is at the destination
    /// is whole: the old item or the new one; nothing or the new one where nothing was. An old item
    /// goes only when the new one is on the disk, so that not even a power failure takes both. What
    /// a process that was killed leaves of its copy, the next one to that folder removes.
    ///
    /// One exception: where a folder is involved, and the volume cannot exchange two items in one
    /// step, the old one is renamed first, to its name with ".old-" and a UUID. For a moment
    /// nothing has the name, and a process that ends in this moment leaves it so.
    ///
    /// Modes, dates and extended attributes go along. A file that takes the place of a file, or a
    /// folder that of a folder, gets the mode, the access list and as far as allowed the owner of
    /// that one. A link at the destination is replaced itself. Waits for the end of
    /// `readSecuredFileWithCoordinator` of the destination in all processes and threads but this
    /// one, whose accessor may replace what it reads. Throws.
    void overwritingCopy(const URL& source, const URL& destination) const;

    /// A zip archive of the items, folders with all they hold. An item whose name another one has
    /// is numbered as `availableItemURL` does. Absent when an item cannot be read, or memory does
    /// not suffice.
    std::optional<Data> zipItems(const std::vector<URL>& urls) const;

    /// Null when there is no such directory.
    std::shared_ptr<NSDirectoryEnumerator> enumerator(const URL& url,
                                                      NSDirectoryEnumerationOptions options) const;

    /// For each URL in turn, symbolic links resolved: nothing where nothing exists, the file
    /// itself, or the entries of the directory, sub-folders included, without hidden ones and
    /// without what packages hold; with `recursive`, also what the sub-folders hold.
    std::vector<URL> searchFiles(const std::vector<URL>& urls, Recursive argument = {}) const;

private:
    NSFileManager() = default;
};

} // namespace zorvan
