// Names that nothing has: asked for, and taken.

#include <zorvan/files/NSFileManager.h>

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/files/internal/fileNames.h>
#include <zorvan/files/internal/filePath.h>
#include <zorvan/platform/foundation/internal/KeyedHash.h>
#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/foundation/internal/removeItem.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <sys/stat.h>
#include <unordered_set>

namespace zorvan {

using namespace files;

namespace {

using Names = std::unordered_set<std::string, internal::KeyedHash>;

/// The names in a folder that end with a number and the extension, as a numbered name of the name
/// does; none when the folder cannot be listed.
Names numberedNames(const std::string& folder, std::string_view name) {
    const std::string_view extension = pathExtensionOfName(name);
    const std::string end = extension.empty() ? ")" : ")." + std::string(extension);
    Names names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), none; !error && entry != none;
         entry.increment(error))
        if (std::string found = entry->path().filename().string(); found.ends_with(end))
            names.insert(std::move(found));
    return names;
}

/// The numbered names of a name in a folder, one after the other. After some of them it leaves out
/// those that the folder has, so that the thousandth name does not take a thousand attempts.
class NumberedNames {
public:
    NumberedNames(std::string folder, std::string_view name, std::size_t longest)
        : folder_(std::move(folder)), name_(name), longest_(longest) {}

    std::string next() {
        constexpr std::int64_t blindAttempts = 10;
        if (number_ == blindAttempts)
            taken_ = numberedNames(folder_, name_);
        std::string name;
        do {
            name = numberedName(name_, number_++, longest_);
        } while (taken_.contains(name));
        return name;
    }

private:
    const std::string folder_;
    const std::string name_;
    const std::size_t longest_;
    std::int64_t number_ = 0;
    Names taken_;
};

/// The first of the names that `take` gives no EEXIST for: the URL itself, then the numbered ones,
/// of that size in bytes at most. The URL must be a file's.
template <class Take>
URL firstAvailable(const URL& url, std::size_t longest, Take take) {
    const URL directory = url.deletingLastPathComponent();
    NumberedNames names(directory.path(), url.lastPathComponent(), longest);
    URL candidate = url;
    while (const int error = take(candidate.path())) {
        if (error != EEXIST)
            throwFileError("cannot create", candidate.path(), error);
        candidate = directory.appendingPathComponent(names.next());
    }
    return candidate;
}

/// Takes the name that it gives, which fits the file system. Throws for what is no path of a file.
template <class Take>
URL takeFirstAvailable(const URL& url, Take take) {
    filePath(url);
    return firstAvailable(url, NAME_MAX, take);
}

} // namespace

URL NSFileManager::availableItemURL(const URL& url) const {
    if (!url.isFileURL())
        return url;
    return firstAvailable(url, std::string::npos,
                          [](const std::string& path) { return isTaken(path) ? EEXIST : 0; });
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
    return takeFirstAvailable(url, [&](const std::string& path) { return file.place(path); });
}

URL NSFileManager::createAvailableDirectory(const URL& url) const {
    return takeFirstAvailable(
        url, [](const std::string& path) { return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno; });
}

URL NSFileManager::moveItemToAvailableURL(const URL& item, const URL& url) const {
    const std::string& from = filePath(item);
    std::optional<UnplacedCopy> copy;
    const URL place = takeFirstAvailable(url, [&](const std::string& path) {
        const int error = copy ? EXDEV : internal::placeItem(from, path);
        if (error != EXDEV)
            return error;
        if (!copy)
            copy.emplace(from, internal::Scratch::pathBeside(path), Durability::onDisk);
        return copy->place(path);
    });
    if (!copy)
        return place;
    internal::synchroniseFolder(internal::folderOf(place.path()));
    if (const int error = internal::removeItem(from))
        throw std::filesystem::filesystem_error("cannot remove what was moved", from, place.path(),
                                                std::error_code(error, std::generic_category()));
    return place;
}

} // namespace zorvan
