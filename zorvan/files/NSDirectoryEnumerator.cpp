#include <zorvan/files/NSDirectoryEnumerator.h>

#include <zorvan/files/internal/DirectoryWalk.h>

namespace zorvan {

NSDirectoryEnumerator::NSDirectoryEnumerator(std::unique_ptr<files::DirectoryWalk> walk)
    : walk_(std::move(walk)) {}

NSDirectoryEnumerator::~NSDirectoryEnumerator() = default;

std::shared_ptr<NSDirectoryEnumerator>
NSDirectoryEnumerator::create(const URL& url, NSDirectoryEnumerationOptions options) {
    auto walk = url.isFileURL() ? files::DirectoryWalk::open(url.path(), options) : nullptr;
    if (!walk)
        return nullptr;
    return std::shared_ptr<NSDirectoryEnumerator>(new NSDirectoryEnumerator(std::move(walk)));
}

std::optional<URL> NSDirectoryEnumerator::nextObject() {
    if (!walk_->advance())
        return std::nullopt;
    return URL({.fileURLWithPath = walk_->path()});
}

void NSDirectoryEnumerator::skipDescendants() noexcept { walk_->skipDescendants(); }

std::size_t NSDirectoryEnumerator::level() const noexcept { return walk_->level(); }

} // namespace zorvan
