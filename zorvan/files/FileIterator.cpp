#include <zorvan/files/FileIterator.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/internal/fileNames.h>
#include <zorvan/platform/foundation/internal/DirectoryWalk.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/openByPath.h>
#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace zorvan {

namespace {

// Bounds the memory that a folder with a different extension on every file can claim.
constexpr std::size_t maximumVerdicts = 4096;

void lower(std::string& text) {
    if (std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }))
        text = lowercased(text);
    else
        std::transform(text.begin(), text.end(), text.begin(), internal::lowered);
}

/// What `fstatat` knows of a path, which may be longer than the kernel takes at once.
std::optional<struct stat> statusAt(const std::string& path, int flags) {
    struct stat status {};
    if (::fstatat(AT_FDCWD, internal::systemPath(path), &status, flags) == 0)
        return status;
    if (errno != ENAMETOOLONG)
        return std::nullopt;
    const int follow = flags & AT_SYMLINK_NOFOLLOW ? O_NOFOLLOW : 0;
    const internal::FileDescriptor item(
        internal::openByPath(AT_FDCWD, path, O_PATH | O_CLOEXEC | follow));
    return ::fstat(item.get(), &status) == 0 ? std::optional(status) : std::nullopt;
}

} // namespace

std::shared_ptr<FileIterator> FileIterator::create(std::vector<URL> urls) {
    return std::shared_ptr<FileIterator>(new FileIterator(std::move(urls)));
}

void FileIterator::setAllowedTypes(std::optional<Types> types) {
    allowedTypes_ = std::move(types);
    typeVerdicts_.clear();
}

std::optional<URL> FileIterator::next() {
    for (;;) {
        if (enumerator_)
            if (std::optional<URL> entry = nextEntry())
                return entry;
        enumerator_.reset();
        if (++index_ >= static_cast<std::int64_t>(urls_.size())) {
            index_ = -1;
            return std::nullopt;
        }
        const URL& root = urls_[static_cast<std::size_t>(index_)];
        if (!root.isFileURL())
            continue;
        if (NSFileManager::defaultManager()->contentExists(root).isDir)
            enumerator_ =
                NSDirectoryEnumerator::create(root.resolvingSymlinksInPath(), enumerationOptions());
        else if (accepts(root.path()))
            return root;
    }
}

NSDirectoryEnumerationOptions FileIterator::enumerationOptions() const noexcept {
    using Options = NSDirectoryEnumerationOptions;
    return (skipSubdirectoryDescendants_ ? Options::skipsSubdirectoryDescendants : Options::none) |
           (skipPackageDescendants_ ? Options::skipsPackageDescendants : Options::none) |
           (skipHiddenFiles_ ? Options::skipsHiddenFiles : Options::none);
}

std::optional<URL> FileIterator::nextEntry() {
    while (enumerator_->advance())
        if (accepts(enumerator_->walk_->path()))
            return URL({.fileURLWithPath = enumerator_->walk_->path()});
    return std::nullopt;
}

/// The names are asked first: they cost no question to the file system.
bool FileIterator::accepts(const std::string& path) {
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    if (!acceptsName(files::pathExtensionOfName(name)))
        return false;
    const auto status = statusAt(path, skipAlias_ ? AT_SYMLINK_NOFOLLOW : 0);
    return status && !S_ISDIR(status->st_mode) && !S_ISLNK(status->st_mode);
}

bool FileIterator::acceptsName(std::string_view pathExtension) {
    const bool hasExtensions = allowedFiles_ && !allowedFiles_->empty();
    const bool hasTypes = allowedTypes_ && !allowedTypes_->empty();
    if (!hasExtensions && !hasTypes)
        return true;
    lowerExtension_.assign(pathExtension);
    lower(lowerExtension_);
    return (hasExtensions && allowedFiles_->contains(lowerExtension_)) ||
           (hasTypes && isOfAllowedType(lowerExtension_));
}

bool FileIterator::isOfAllowedType(const std::string& lowerExtension) {
    if (const auto known = typeVerdicts_.find(lowerExtension); known != typeVerdicts_.end())
        return known->second;
    const auto type = UTIType::make({.fileExtension = lowerExtension});
    const bool verdict =
        type && std::any_of(allowedTypes_->begin(), allowedTypes_->end(),
                            [&](const UTIType& allowed) { return type->conforms(allowed); });
    if (typeVerdicts_.size() >= maximumVerdicts)
        typeVerdicts_.clear();
    typeVerdicts_.emplace(lowerExtension, verdict);
    return verdict;
}

} // namespace zorvan
