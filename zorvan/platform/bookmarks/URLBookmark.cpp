#include <zorvan/platform/bookmarks/URLBookmark.h>

#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>
#include <zorvan/platform/bookmarks/internal/FileSearch.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace zorvan {

namespace {

using internal::BookmarkRecord;
using internal::FileHandle;
using internal::FileIdentity;

void explain(std::string* problem, std::string text) {
    if (problem)
        *problem = std::move(text);
}

/// The name in quotes, in one line.
std::string quoted(const URL& url) {
    std::string name = "\"";
    for (const char c : url.lastPathComponent())
        name += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
    return name + '"';
}

/// Where the file is now, other than at its old path; empty when it is nowhere.
std::string placeOf(const BookmarkRecord& record) {
    const std::string path = record.handle.currentPath(internal::existingFolder(record.path));
    const auto found = path.empty() ? std::nullopt : FileIdentity::at(path);
    if (found && record.identity.isSameFile(*found))
        return path;
    return internal::findMoved(record);
}

} // namespace

std::optional<Data> bookmarkData(const URL& url, NSURLBookmarkCreationOptions,
                                 std::string* problem) {
    if (!url.isFileURL()) {
        explain(problem, "Only files can have bookmarks.");
        return std::nullopt;
    }
    const std::optional<FileIdentity> identity = FileIdentity::at(url.path());
    if (!identity) {
        explain(problem, "The file " + quoted(url) + " cannot be bookmarked: " +
                             std::system_category().message(errno) + ".");
        return std::nullopt;
    }
    return BookmarkRecord{*identity, FileHandle::of(url.path()), url.path()}.encoded();
}

std::optional<ResolvedBookmark> resolveBookmark(std::span<const std::byte> bookmark,
                                                NSURLBookmarkResolutionOptions,
                                                std::string* problem) {
    const std::optional<BookmarkRecord> record = BookmarkRecord::decoded(bookmark);
    if (!record) {
        explain(problem, "The bookmark cannot be read.");
        return std::nullopt;
    }
    const URL url({.fileURLWithPath = record->path});
    const std::optional<FileIdentity> there = FileIdentity::at(record->path);
    if (there && there->isSameFile(record->identity))
        return ResolvedBookmark{url, *there != record->identity};
    const std::string moved = placeOf(*record);
    if (!moved.empty())
        return ResolvedBookmark{URL({.fileURLWithPath = moved}), true};
    if (there)
        return ResolvedBookmark{url, true};
    explain(problem, "The file " + quoted(url) + " cannot be found.");
    return std::nullopt;
}

} // namespace zorvan
