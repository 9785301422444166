#include "PictureList.h"

#include "displayText.h"

#include <zorvan/files/FileIterator.h>
#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/URL.h>

#include <algorithm>
#include <unordered_set>

using namespace zorvan;

namespace {

URL fileURL(const std::string& path) { return URL({.fileURLWithPath = path}); }

/// Sets the filter that the user asked for; when there is none, `otherwise`.
void setTypes(FileIterator& files, const std::vector<std::string>& wanted,
              FileIterator::Types otherwise) {
    FileIterator::Types types;
    FileIterator::Extensions extensions;
    for (const std::string& type : wanted) {
        // Only identifiers have dots inside.
        const std::string_view name = std::string_view(type).substr(type.starts_with('.') ? 1 : 0);
        if (name.find('.') != std::string_view::npos)
            types.push_back(UTIType({.identifier = std::string(name)}));
        else if (auto known = UTIType::make({.fileExtension = name}))
            types.push_back(std::move(*known));
        else
            extensions.emplace(name);
    }
    files.setAllowedTypes(wanted.empty() ? std::move(otherwise) : std::move(types));
    files.setAllowedFiles(std::move(extensions));
}

/// False when no more are wanted.
bool walkPath(const std::string& path, const Options& options,
              const std::function<bool(const ListedFile&)>& found) {
    const URL root = fileURL(path);
    const bool isFolder = NSFileManager::defaultManager()->contentExists(root).isDir;
    const auto files = FileIterator::create({root});
    files->setSkipSubdirectoryDescendants(!options.recursive);
    files->setSkipHiddenFiles(!options.hidden);
    files->setSkipPackageDescendants(!options.packages);
    files->setSkipAlias(options.noLinks);
    // A file that the user names is looked at whatever its extension.
    setTypes(*files, options.types,
             isFolder ? FileIterator::Types{UTIType::image(), UTIType::movie()}
                      : FileIterator::Types());

    const std::string top = root.resolvingSymlinksInPath().path();
    const std::size_t start = top == "/" ? 1 : top.size() + 1;
    for (const URL& url : *files)
        if (!found({url, isFolder ? url.path().substr(start) : path}))
            return false;
    return true;
}

std::unordered_set<std::string> pathsWritten(const Options& options) {
    std::unordered_set<std::string> paths;
    for (const auto& written : {options.sheet, options.screenshot})
        if (written)
            paths.insert(fileURL(*written).resolvingSymlinksInPath().path());
    return paths;
}

} // namespace

std::vector<std::string> missingPaths(const Options& options) {
    std::vector<std::string> missing;
    for (const std::string& path : options.paths)
        if (path.empty() || !NSFileManager::defaultManager()->contentExists(fileURL(path)).exist)
            missing.push_back(path);
    return missing;
}

void walkFiles(const Options& options, const std::function<bool(const ListedFile&)>& found) {
    std::unordered_set<std::string> seen = pathsWritten(options);
    for (const std::string& path : options.paths)
        if (!walkPath(path, options, [&](const ListedFile& file) {
                return !seen.insert(file.url.path()).second || found(file);
            }))
            return;
}

std::vector<ListedFile> listFiles(const Options& options) {
    std::unordered_set<std::string> seen = pathsWritten(options);
    std::vector<ListedFile> list;
    for (const std::string& path : options.paths) {
        const auto start = static_cast<std::ptrdiff_t>(list.size());
        walkPath(path, options, [&](const ListedFile& file) {
            if (seen.insert(file.url.path()).second)
                list.push_back(file);
            return true;
        });
        std::sort(list.begin() + start, list.end(), [](const ListedFile& a, const ListedFile& b) {
            return comesBefore(a.name, b.name);
        });
    }
    return list;
}
