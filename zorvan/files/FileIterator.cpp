#include <zorvan/files/FileIterator.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/URL.h>
#include <zorvan/files/internal/DirectoryWalk.h>
#include <zorvan/files/internal/pathExtension.h>

#include <algorithm>

namespace zorvan {

namespace {

// Bounds the memory that a folder with a different extension on every file can claim.
constexpr std::size_t maximumVerdicts = 4096;

} // namespace

std::shared_ptr<FileIterator> FileIterator::create(std::vector<URL> urls) {
    return std::shared_ptr<FileIterator>(new FileIterator(std::move(urls)));
}

void FileIterator::setAllowedTypes(std::optional<Types> types) {
    allowedTypes_ = std::move(types);
    typeVerdicts_.clear();
}

void FileIterator::setAllowedFiles(std::optional<Extensions> extensions) {
    allowedFiles_ = std::move(extensions);
    extensions_.clear();
    if (allowedFiles_)
        extensions_.insert(allowedFiles_->begin(), allowedFiles_->end());
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
        if (NSFileManager::defaultManager()->contentExists(root).isDir)
            enumerator_ =
                NSDirectoryEnumerator::create(root.resolvingSymlinksInPath(), enumerationOptions());
        else if (acceptsRoot(root))
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
    while (enumerator_->walk_->advance())
        if (acceptsEntry())
            return URL({.fileURLWithPath = enumerator_->walk_->path()});
    return std::nullopt;
}

/// The verdict of `acceptsRoot`, without asking the file system what the directory has told
/// already: that the entry exists, and whether it is a directory or a link. Only what a link leads
/// to must be looked up, and that last of all.
bool FileIterator::acceptsEntry() {
    const files::DirectoryWalk& walk = *enumerator_->walk_;
    const bool isLink = walk.kind() == files::EntryKind::link;
    return walk.kind() != files::EntryKind::directory && !(isLink && skipAlias_) &&
           acceptsName(files::pathExtensionOfName(walk.name())) &&
           (!isLink || walk.linkLeadsToFile());
}

bool FileIterator::acceptsRoot(const URL& url) {
    const auto content = NSFileManager::defaultManager()->contentExists(url);
    if (!content.exist || content.isDir || !acceptsName(url.pathExtension()))
        return false;
    if (!skipAlias_)
        return true;
    const auto values = resourceValues(url);
    return values && !values->isAliasFile && !values->isSymbolicLink;
}

bool FileIterator::acceptsName(std::string_view pathExtension) {
    const bool hasExtensions = !extensions_.empty();
    const bool hasTypes = allowedTypes_ && !allowedTypes_->empty();
    if (!hasExtensions && !hasTypes)
        return true;
    lowerExtension_.assign(pathExtension);
    std::transform(lowerExtension_.begin(), lowerExtension_.end(), lowerExtension_.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return (hasExtensions && extensions_.contains(std::string_view(lowerExtension_))) ||
           (hasTypes && isOfAllowedType(lowerExtension_));
}

bool FileIterator::isOfAllowedType(std::string_view lowerExtension) {
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
