#include <zorvan/files/NSFileWrapper.h>

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/files/internal/LockItem.h>
#include <zorvan/files/internal/fileNames.h>
#include <zorvan/files/internal/filePath.h>
#include <zorvan/platform/foundation/fatalError.h>
#include <zorvan/platform/foundation/internal/FileIdentity.h>
#include <zorvan/platform/foundation/internal/Scratch.h>
#include <zorvan/platform/foundation/internal/openForReading.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan {

using namespace files;
using internal::FileDescriptor, internal::FileIdentity;

struct NSFileWrapper::Source {
    std::string path;
    FileIdentity identity;
};

namespace {

/// Another file may have the name by now, so that bytes that are no longer there are not taken for
/// those.
void expectSameFile(const FileIdentity& identity, const std::optional<FileIdentity>& found,
                    const std::string& path) {
    if (found && !found->isSameFile(identity))
        throwFileError("another file is there than was read", path, ESTALE);
}

Data bytesOf(const std::string& path, const FileIdentity& identity) {
    struct stat status {};
    const FileDescriptor file =
        internal::openRegularFile(AT_FDCWD, path.c_str(), status, O_NOFOLLOW);
    if (!file)
        throwFileError("cannot read", path, errno);
    expectSameFile(identity, FileIdentity::of(file.get()), path);
    Data bytes;
    Data chunk(std::size_t{1} << 16);
    for (;;) {
        const ssize_t count =
            internal::uninterrupted([&] { return ::read(file.get(), chunk.data(), chunk.size()); });
        if (count < 0)
            throwFileError("cannot read", path, errno);
        if (count == 0)
            return bytes;
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + count);
    }
}

void writeBytes(std::span<const std::byte> bytes, const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file)
        throwFileError("cannot create", path, errno);
    if (const int error = internal::writeAll(file.get(), bytes))
        throwFileError("cannot write", path, error);
}

/// Gives permissions to a folder, where the volume has any.
void setPermissions(const std::string& folder, mode_t permissions) {
    (void)::chmod(folder.c_str(), permissions);
}

/// For a message, which is one line.
std::string inMessage(const std::string& name) {
    return '"' + internal::percentEscaped(name, [](char c) { return c < 0 || c >= ' '; }) + '"';
}

void expectFileName(const std::string& name) {
    if (!isFileName(name))
        fatalError(inMessage(name) +
                   " is no file name that a file wrapper can have in a directory.");
}

} // namespace

std::shared_ptr<NSFileWrapper> NSFileWrapper::create(const Place& place) {
    const std::string& path = filePath(place.url.value);
    std::shared_ptr<NSFileWrapper> wrapper;
    if (std::filesystem::is_directory(path)) {
        wrapper = read(std::filesystem::canonical(path));
    } else {
        std::filesystem::create_directories(path);
        wrapper = of(Children());
    }
    wrapper->filename_ = place.url.value.lastPathComponent();
    wrapper->preferredFilename_ = wrapper->filename_;
    return wrapper;
}

std::shared_ptr<NSFileWrapper> NSFileWrapper::create(RegularFile file) {
    return of(std::move(file.regularFileWithContents.value));
}

std::shared_ptr<NSFileWrapper> NSFileWrapper::create(Directory directory) {
    for (const auto& [name, child] : directory.directoryWithFileWrappers.value)
        expectFileName(name);
    return of(std::move(directory.directoryWithFileWrappers.value));
}

std::shared_ptr<NSFileWrapper> NSFileWrapper::create(SymbolicLink link) {
    return of(Link{std::move(link.symbolicLinkWithDestination.value)});
}

std::shared_ptr<NSFileWrapper> NSFileWrapper::of(Content content) {
    return std::shared_ptr<NSFileWrapper>(new NSFileWrapper(std::move(content)));
}

/// Of a file that is going to be at another path; null when it is gone.
NSFileWrapper::SharedSource NSFileWrapper::sourceAt(const std::string& path, std::string later) {
    const auto identity = FileIdentity::at(path);
    return identity ? std::make_shared<const Source>(Source{std::move(later), *identity}) : nullptr;
}

/// Null for what is no file, folder or link.
std::shared_ptr<NSFileWrapper> NSFileWrapper::read(const std::string& path) {
    const auto status = std::filesystem::symlink_status(path);
    switch (status.type()) {
    case std::filesystem::file_type::directory: {
        auto folder = of(readChildren(path));
        folder->permissions_ = static_cast<mode_t>(status.permissions());
        return folder;
    }
    case std::filesystem::file_type::symlink:
        return of(Link{std::filesystem::read_symlink(path).string()});
    case std::filesystem::file_type::regular:
        if (SharedSource source = sourceAt(path, path))
            return of(std::move(source));
        return nullptr;
    default:
        return nullptr;
    }
}

NSFileWrapper::Children NSFileWrapper::readChildren(const std::string& path) {
    Children children;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        if (auto child = read(entry.path().string())) {
            child->filename_ = child->preferredFilename_ = entry.path().filename().string();
            children.emplace(child->filename_, std::move(child));
        }
    return children;
}

NSFileWrapper::Children& NSFileWrapper::children() {
    if (!isDirectory())
        fatalError("The file wrapper " + inMessage(preferredFilename_) + " is not a directory.");
    return std::get<Children>(content_);
}

const NSFileWrapper::Children& NSFileWrapper::fileWrappers() const {
    return const_cast<NSFileWrapper*>(this)->children();
}

std::optional<Data> NSFileWrapper::regularFileContents() const {
    if (const Data* data = std::get_if<Data>(&content_))
        return *data;
    if (const auto* source = std::get_if<SharedSource>(&content_))
        return bytesOf((*source)->path, (*source)->identity);
    return std::nullopt;
}

std::optional<std::string> NSFileWrapper::symbolicLinkDestination() const {
    const Link* link = std::get_if<Link>(&content_);
    return link ? std::optional(link->destination) : std::nullopt;
}

bool NSFileWrapper::holds(const NSFileWrapper& other) const {
    if (this == &other)
        return true;
    const Children* children = std::get_if<Children>(&content_);
    return children && std::any_of(children->begin(), children->end(),
                                   [&](const auto& child) { return child.second->holds(other); });
}

std::string NSFileWrapper::addFileWrapper(const std::shared_ptr<NSFileWrapper>& child) {
    Children& siblings = children();
    expectFileName(child->preferredFilename_);
    if (child->holds(*this))
        fatalError("The file wrapper " + inMessage(child->preferredFilename_) +
                   " cannot be added to what it holds, or to itself.");
    std::string name = child->preferredFilename_;
    for (std::int64_t n = 0; !siblings.emplace(name, child).second; ++n)
        name = numberedName(child->preferredFilename_, n);
    return name;
}

void NSFileWrapper::removeFileWrapper(const std::shared_ptr<NSFileWrapper>& child) {
    // The caller's pointer may be the one that is erased.
    const NSFileWrapper* gone = child.get();
    std::erase_if(children(), [&](const auto& entry) { return entry.second.get() == gone; });
}

void NSFileWrapper::write(const URL& url) const {
    const std::string& path = filePath(url);
    const internal::Scratch copy = internal::Scratch::beside(path);
    const std::optional<mode_t> permissions = writeClosed(copy.path());
    synchroniseVolumeOf(copy.path());
    const std::string place = std::filesystem::canonical(internal::folderOf(path)) /
                              std::filesystem::path(path).filename();
    const Moves moves = movesFrom(place, copy.path(), place);
    const LockForReplacing lock(path);
    // Those of a folder that is replaced stay.
    if (permissions && !std::filesystem::is_directory(std::filesystem::symlink_status(path)))
        setPermissions(copy.path(), *permissions);
    const int error = internal::replaceItem(path, copy.path());
    if (error != 0)
        throwFileError("cannot write", path, error);
    for (const auto& [file, source] : moves)
        file->content_ = source;
}

/// The files that were read from the place, with what they are read from when it has been replaced
/// by what was written.
NSFileWrapper::Moves NSFileWrapper::movesFrom(const std::string& place, const std::string& written,
                                              const std::string& later) const {
    Moves moves;
    const Children* children = std::get_if<Children>(&content_);
    if (!children)
        return moves;
    for (const auto& [name, child] : *children) {
        const std::string path = written + '/' + name, end = later + '/' + name;
        const auto* source = std::get_if<SharedSource>(&child->content_);
        if (source && (*source)->path.starts_with(place + '/'))
            if (SharedSource moved = sourceAt(path, end))
                moves.emplace_back(child.get(), std::move(moved));
        for (auto& move : child->movesFrom(place, path, end))
            moves.push_back(std::move(move));
    }
    return moves;
}

void NSFileWrapper::writeTo(const std::string& path) const {
    if (const auto permissions = writeClosed(path))
        setPermissions(path, *permissions);
}

/// A folder is closed to others while it is filled. Its permissions, which are not given to it yet;
/// absent for all else.
std::optional<mode_t> NSFileWrapper::writeClosed(const std::string& path) const {
    if (const auto* source = std::get_if<SharedSource>(&content_)) {
        expectSameFile((*source)->identity, FileIdentity::at((*source)->path), (*source)->path);
        copyItem((*source)->path, path, Durability::none);
    } else if (const Data* data = std::get_if<Data>(&content_)) {
        writeBytes(*data, path);
    } else if (const Link* link = std::get_if<Link>(&content_)) {
        std::filesystem::create_symlink(link->destination, path);
    } else {
        return writeFolder(path);
    }
    return std::nullopt;
}

mode_t NSFileWrapper::writeFolder(const std::string& path) const {
    std::filesystem::create_directory(path);
    const auto made = std::filesystem::status(path).permissions();
    setPermissions(path, 0700);
    for (const auto& [name, child] : std::get<Children>(content_))
        child->writeTo(path + '/' + name);
    return permissions_.value_or(static_cast<mode_t>(made));
}

} // namespace zorvan
