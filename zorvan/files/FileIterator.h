#pragma once

#include <zorvan/files/NSDirectoryEnumerator.h>
#include <zorvan/files/UTIType.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zorvan {

/// The files that a list of files and folders stands for, one after the other.
///
/// A root that is a file stands for itself, a folder for what it holds. Roots come in the order of
/// the list, the entries of a folder in the order of the file system. Directories are never given;
/// what does not exist or cannot be read is passed over without a report, also when that came about
/// after the folder was read.
///
///     auto iterator = FileIterator::create({folder, file});
///     iterator->setAllowedTypes({{UTIType::image()}});
///     for (const URL& url : *iterator) ...
///
/// Keep the pointer in a variable, as above: in C++20 a loop right over what `create` returns
/// outlives what it goes through.
///
/// The object is its own iterator: going through it twice, or from two places, moves the same state
/// on. After the end it starts again from the first root. Options may change at any time and hold
/// from the next file on; those of the enumerator (hidden files, sub-folders, packages) from the
/// next root on. Not safe to share between threads.
class FileIterator {
public:
    using Types = std::vector<UTIType>;                 ///< Any of them will do.
    using Extensions = std::unordered_set<std::string>; ///< Without a dot.
    class Iterator;

    /// Looks at no file yet. Only file URLs stand for anything.
    static std::shared_ptr<FileIterator> create(std::vector<URL> urls);

    FileIterator(const FileIterator&) = delete;
    FileIterator& operator=(const FileIterator&) = delete;

    /// The next file; absent when every root has been visited.
    std::optional<URL> next();

    /// Takes the first file at once, as every step does.
    Iterator begin();
    /// Where every root has been visited.
    std::default_sentinel_t end() const noexcept { return {}; }

    /// The roots, as they were given.
    const std::vector<URL>& urls() const noexcept { return urls_; }

    /// Whether aliases and symbolic links are left out. False at first.
    /// @{
    bool skipAlias() const noexcept { return skipAlias_; }
    void setSkipAlias(bool value) noexcept { skipAlias_ = value; }
    /// @}

    /// Whether names that begin with a dot are left out below a root, and with a hidden folder what
    /// it holds. True at first.
    /// @{
    bool skipHiddenFiles() const noexcept { return skipHiddenFiles_; }
    void setSkipHiddenFiles(bool value) noexcept { skipHiddenFiles_ = value; }
    /// @}

    /// Whether only a root's own entries count, not those of its sub-folders. True at first.
    /// @{
    bool skipSubdirectoryDescendants() const noexcept { return skipSubdirectoryDescendants_; }
    void setSkipSubdirectoryDescendants(bool value) noexcept {
        skipSubdirectoryDescendants_ = value;
    }
    /// @}

    /// Whether packages below a root stay closed. True at first.
    /// @{
    bool skipPackageDescendants() const noexcept { return skipPackageDescendants_; }
    void setSkipPackageDescendants(bool value) noexcept { skipPackageDescendants_ = value; }
    /// @}

    /// Lets through files whose extension's type conforms to one of these. Absent or empty: no such
    /// filter. With `allowedFiles` set as well, a file need pass one of the two only.
    /// @{
    const std::optional<Types>& allowedTypes() const noexcept { return allowedTypes_; }
    void setAllowedTypes(std::optional<Types> types);
    /// @}

    /// Lets through files with one of these extensions, which are given in lower case without a
    /// dot: the file's own extension is lowered, the ones given here are not.
    /// @{
    const std::optional<Extensions>& allowedFiles() const noexcept { return allowedFiles_; }
    void setAllowedFiles(std::optional<Extensions> extensions) {
        allowedFiles_ = std::move(extensions);
    }
    /// @}

    /// The position of the root being visited; -1 before the first and after the end.
    std::int64_t index() const noexcept { return index_; }

    /// The enumerator of the folder being visited; null when there is none.
    const std::shared_ptr<NSDirectoryEnumerator>& enumerator() const noexcept {
        return enumerator_;
    }

private:
    explicit FileIterator(std::vector<URL> urls) : urls_(std::move(urls)) {}

    std::optional<URL> nextEntry();
    NSDirectoryEnumerationOptions enumerationOptions() const noexcept;
    bool accepts(const std::string& path);
    bool acceptsName(std::string_view pathExtension);
    bool isOfAllowedType(const std::string& lowerExtension);

    std::vector<URL> urls_;
    bool skipAlias_ = false;
    bool skipHiddenFiles_ = true;
    bool skipSubdirectoryDescendants_ = true;
    bool skipPackageDescendants_ = true;
    std::optional<Types> allowedTypes_;
    std::optional<Extensions> allowedFiles_;
    std::int64_t index_ = -1;
    std::shared_ptr<NSDirectoryEnumerator> enumerator_;

    std::unordered_map<std::string, bool> typeVerdicts_; // by extension
    std::string lowerExtension_;                         // of the file being judged
};

/// An input iterator over a `FileIterator`, which must outlive it.
class FileIterator::Iterator {
public:
    /// What the standard library asks of an iterator.
    /// @{
    using iterator_concept = std::input_iterator_tag;
    using value_type = URL;
    using difference_type = std::ptrdiff_t;
    /// @}

    Iterator() = default;

    /// The file last taken; there must be one.
    /// @{
    const URL& operator*() const noexcept { return *current_; }
    const URL* operator->() const noexcept { return &*current_; }
    /// @}
    /// Takes the next file.
    /// @{
    Iterator& operator++() {
        current_ = files_->next();
        return *this;
    }
    void operator++(int) { ++*this; }
    /// @}

    /// Whether every root has been visited.
    friend bool operator==(const Iterator& iterator, std::default_sentinel_t) noexcept {
        return !iterator.current_;
    }

private:
    friend class FileIterator;
    explicit Iterator(FileIterator& files) : files_(&files), current_(files.next()) {}

    FileIterator* files_ = nullptr;
    std::optional<URL> current_;
};

inline FileIterator::Iterator FileIterator::begin() { return Iterator(*this); }

} // namespace zorvan
