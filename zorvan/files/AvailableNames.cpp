// Names that nothing has: asked for, and taken.

#include <zorvan/files/NSFileManager.h>

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/files/internal/fileNames.h>
#include <zorvan/files/internal/filePath.h>
#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/foundation/internal/removeItem.h>

#include <cerrno>
#include <sys/stat.h>

namespace zorvan {

using namespace files;

namespace {

/// The first of the names that `take` gives no EEXIST for: the URL itself, then the numbered ones.
template <class Take>
URL firstAvailable(const URL& url, Take take) {
    const std::string name(url.lastPathComponent());
    const URL directory = url.deletingLastPathComponent();
    URL candidate = url;
    for (std::int64_t n = 0;; ++n) {
        const int error = take(filePath(candidate));
        if (error == 0)
            return candidate;
        if (error != EEXIST)
            throwFileError("cannot create", candidate.path(), error);
        candidate = directory.appendingPathComponent(numberedName(name, n));
    }
}

} // namespace

URL NSFileManager::availableItemURL(const URL& url) const {
    if (!url.isFileURL())
        return url;
    return firstAvailable(url, [](const std::string& path) { return isTaken(path) ? EEXIST : 0; });
}

URL NSFileManager::availableItemURL(std::string_view name, const URL& directory) const {
    return availableItemURL(directory.appendingPathComponent(name));
}

URL NSFileManager::createAvailableFile(const URL& url, std::span<const std::byte> contents) const {
    internal::NewFile file(internal::Scratch::pathBeside(filePath(url)), 0666);
    int error = file.error();
    if (error == 0)
        error = file.write(contents);
    if (error != 0)
        throwFileError("cannot create", url.path(), error);
    return firstAvailable(url, [&](const std::string& path) { return file.place(path); });
}

URL NSFileManager::createAvailableDirectory(const URL& url) const {
    return firstAvailable(
        url, [](const std::string& path) { return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno; });
}

URL NSFileManager::moveItemToAvailableURL(const URL& item, const URL& url) const {
    const std::string& from = filePath(item);
    std::optional<UnplacedCopy> copy;
    const URL place = firstAvailable(url, [&](const std::string& path) {
        const int error = copy ? EXDEV : internal::placeItem(from, path);
        if (error != EXDEV)
            return error;
        if (!copy)
            copy.emplace(from, internal::Scratch::pathBeside(path), Durability::onDisk);
        return copy->place(path);
    });
    if (copy)
        internal::removeItem(from);
    return place;
}

} // namespace zorvan
