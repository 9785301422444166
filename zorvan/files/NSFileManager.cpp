#include <zorvan/files/NSFileManager.h>

#include <zorvan/platform/foundation/UUID.h>

#include <cstdint>
#include <cstdlib>
#include <sys/stat.h>

namespace zorvan {

namespace {

bool isTaken(const URL& url) {
    struct stat status {};
    return url.isFileURL() && ::lstat(url.path().c_str(), &status) == 0;
}

std::string temporaryDirectory() {
    const char* directory = std::getenv("TMPDIR");
    return directory && directory[0] == '/' ? directory : "/tmp";
}

} // namespace

const std::shared_ptr<NSFileManager>& NSFileManager::defaultManager() {
    static const std::shared_ptr<NSFileManager> manager(new NSFileManager);
    return manager;
}

NSFileManager::Content NSFileManager::contentExists(const URL& url) const {
    struct stat status {};
    if (!url.isFileURL() || ::stat(url.path().c_str(), &status) != 0)
        return {};
    return {.exist = true, .isDir = S_ISDIR(status.st_mode)};
}

URL NSFileManager::availableItemURL(const URL& url) const {
    if (!isTaken(url))
        return url;
    const std::string base(url.deletingPathExtension().lastPathComponent());
    const std::string extension(url.pathExtension());
    const URL directory = url.deletingLastPathComponent();
    for (std::int64_t n = 0;; ++n) {
        const URL candidate =
            directory.appendingPathComponent(base + " (" + std::to_string(n) + ")")
                .appendingPathExtension(extension);
        if (!isTaken(candidate))
            return candidate;
    }
}

URL NSFileManager::availableItemURL(std::string_view name, const URL& directory) const {
    return availableItemURL(directory.appendingPathComponent(name));
}

URL NSFileManager::temporaryURL(PathExtension argument) const {
    return URL({.fileURLWithPath = temporaryDirectory()})
        .appendingPathComponent(makeUUIDString())
        .appendingPathExtension(argument.pathExt);
}

URL NSFileManager::temporaryURL(Model argument) const {
    return temporaryURL({.pathExt = argument.for_.value.pathExtension()});
}

} // namespace zorvan
