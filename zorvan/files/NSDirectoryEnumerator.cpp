#include <zorvan/files/NSDirectoryEnumerator.h>

#include <zorvan/files/internal/fileNames.h>
#include <zorvan/platform/coreservices/UTType.h>
#include <zorvan/platform/foundation/internal/DirectoryWalk.h>

namespace zorvan {

using Options = NSDirectoryEnumerationOptions;

NSDirectoryEnumerator::NSDirectoryEnumerator(std::unique_ptr<internal::DirectoryWalk> walk,
                                             Options options)
    : walk_(std::move(walk)), options_(options) {}

NSDirectoryEnumerator::~NSDirectoryEnumerator() = default;

std::shared_ptr<NSDirectoryEnumerator> NSDirectoryEnumerator::create(const URL& url,
                                                                     Options options) {
    auto walk = url.isFileURL() ? internal::DirectoryWalk::open(url.path()) : nullptr;
    if (!walk)
        return nullptr;
    return std::shared_ptr<NSDirectoryEnumerator>(
        new NSDirectoryEnumerator(std::move(walk), options));
}

std::optional<URL> NSDirectoryEnumerator::nextObject() {
    if (!advance())
        return std::nullopt;
    return URL({.fileURLWithPath = walk_->path()});
}

bool NSDirectoryEnumerator::has(Options option) const noexcept {
    return (options_ & option) == option;
}

/// Goes on to the next entry that the options let through.
bool NSDirectoryEnumerator::advance() {
    while (walk_->advance()) {
        const bool isHidden = has(Options::skipsHiddenFiles) && walk_->name().starts_with('.');
        if (isHidden || (walk_->kind() == internal::EntryKind::directory && staysClosed()))
            walk_->skipDescendants();
        if (!isHidden)
            return true;
    }
    return false;
}

bool NSDirectoryEnumerator::staysClosed() const {
    return has(Options::skipsSubdirectoryDescendants) ||
           (has(Options::skipsPackageDescendants) &&
            isPackageExtension(files::pathExtensionOfName(walk_->name())));
}

void NSDirectoryEnumerator::skipDescendants() noexcept { walk_->skipDescendants(); }

std::size_t NSDirectoryEnumerator::level() const noexcept { return walk_->level(); }

} // namespace zorvan
