// The folders that a program puts its files into.

#include <zorvan/files/NSFileManager.h>

#include <zorvan/files/internal/fileNames.h>
#include <zorvan/files/internal/filePath.h>
#include <zorvan/platform/foundation/NSUserName.h>
#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan {

int files::makePrivateFolder(const std::string& path) {
    internal::makeFolders(internal::folderOf(path), 0777);
    return ::mkdir(path.c_str(), 0700) == 0 ? 0 : errno;
}

using namespace files;

namespace {

URL temporaryDirectory() {
    return URL({.fileURLWithPath = internal::pathFromEnvironment("TMPDIR").value_or("/tmp")});
}

std::optional<std::string> mainBundleName() {
    const PropertyList* name = NSBundle::mainBundle()->objectForInfoDictionaryKey("CFBundleName");
    const auto* text = name ? name->as<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

/// Whether a folder, not by way of a link, is this user's, and no one else may write to it, be it
/// only from now on.
bool isMadeOwn(const std::string& path) noexcept {
    const internal::FileDescriptor folder(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    return ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid() &&
           ((status.st_mode & 0022) == 0 || ::fchmod(folder.get(), 0700) == 0);
}

URL temporaryDirectory(const NSBundle& bundle) {
    const std::string identifier = bundle.bundleIdentifier().value_or("");
    if (isFileName(identifier)) {
        const URL folder = temporaryDirectory().appendingPathComponent(identifier);
        if (makePrivateFolder(folder.path()) == 0 || isMadeOwn(folder.path()))
            return folder;
    }
    const URL folder = temporaryDirectory().appendingPathComponent(makeUUIDString());
    makePrivateFolder(folder.path());
    return folder;
}

URL newFile(const URL& folder, std::string_view extension) {
    return folder.appendingPathComponent(makeUUIDString()).appendingPathExtension(extension);
}

} // namespace

std::string NSFileManager::noSandboxHomePath() const { return "/Users/" + NSUserName() + "/"; }

URL NSFileManager::noSandboxHomeURL() const {
    return URL({.fileURLWithPath = noSandboxHomePath()});
}

std::optional<URL> NSFileManager::noSandboxBundleSupportDirectoryURL() const {
    const auto name = mainBundleName();
    if (!name)
        return std::nullopt;
    return noSandboxHomeURL()
        .appendingPathComponent("Library/Application Support")
        .appendingPathComponent(*name);
}

std::optional<URL> NSFileManager::bundleSupportDirectoryURL() const {
    const auto name = mainBundleName();
    const auto support = name ? internal::dataFolder() : std::nullopt;
    if (!support)
        return std::nullopt;
    return URL({.fileURLWithPath = *support}).appendingPathComponent(*name);
}

URL NSFileManager::createDirectory(const URL& url) const {
    std::filesystem::create_directories(filePath(url));
    return url;
}

URL NSFileManager::createDirectory(const URL& url, std::string_view pathComponent) const {
    return createDirectory(url.appendingPathComponent(pathComponent));
}

std::optional<URL> NSFileManager::createBundleSupportDirectory() const {
    return createBundleSupportDirectoryWithComponent("");
}

std::optional<URL>
NSFileManager::createBundleSupportDirectoryWithComponent(std::string_view component) const {
    const auto support = bundleSupportDirectoryURL();
    if (!support)
        return std::nullopt;
    try {
        return createDirectory(*support, component);
    } catch (const std::filesystem::filesystem_error&) {
        return std::nullopt;
    }
}

URL NSFileManager::temporaryURL(PathExtension argument) const {
    return newFile(temporaryDirectory(), argument.pathExt);
}

URL NSFileManager::temporaryURL(Model argument) const {
    return newFile(temporaryDirectory(), argument.for_.value.pathExtension());
}

URL NSFileManager::temporaryURL(const PathExtensionInBundle& argument) const {
    return newFile(temporaryDirectory(*argument.bundle.value), argument.pathExt);
}

URL NSFileManager::temporaryURL(const ModelInBundle& argument) const {
    return newFile(temporaryDirectory(*argument.bundle.value), argument.for_.value.pathExtension());
}

} // namespace zorvan
