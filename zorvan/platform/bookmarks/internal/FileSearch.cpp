#include <zorvan/platform/bookmarks/internal/FileSearch.h>

#include <zorvan/platform/foundation/internal/placeItem.h>

#include <deque>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace zorvan::internal {

namespace {

/// Breadth first, so that what is near is found early. Names only: a directory tells the number of
/// each file, and a folder is entered only when it is on the volume.
class Search {
public:
    explicit Search(const BookmarkRecord& file) : file_(file) {}

    std::string below(const std::string& top, const std::string& except) {
        const auto volume = FileIdentity::at(top);
        if (!volume)
            return {};
        std::deque<std::string> folders{top};
        while (!folders.empty() && left_ > 0) {
            const std::string folder = std::move(folders.front());
            folders.pop_front();
            const auto identity = FileIdentity::at(folder);
            if (!identity || identity->device != volume->device)
                continue;
            std::string found = in(folder, except, folders);
            if (!found.empty())
                return found;
        }
        return {};
    }

private:
    std::string in(const std::string& folder, const std::string& except,
                   std::deque<std::string>& folders) {
        const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
        if (!entries)
            return {};
        while (const dirent* entry = left_ > 0 ? ::readdir(entries.get()) : nullptr) {
            const std::string name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            --left_;
            std::string path = (folder == "/" ? "" : folder) + "/" + name;
            if (entry->d_ino == file_.identity.inode && isFile(path))
                return path;
            const bool isFolder = entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN;
            if (isFolder && path != except)
                folders.push_back(std::move(path));
        }
        return {};
    }

    /// A number can be given out again within the grain of the clock of births; a handle cannot.
    bool isFile(const std::string& path) const {
        const auto identity = FileIdentity::at(path);
        return identity && file_.identity.isSameFile(*identity) &&
               file_.handle.mayBeOf(FileHandle::of(path));
    }

    const BookmarkRecord& file_;
    std::size_t left_ = maximumSearch;
};

} // namespace

std::string existingFolder(std::string path) {
    struct stat status {};
    do
        path = folderOf(path);
    while (path != "/" && (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)));
    return path;
}

std::string findMoved(const BookmarkRecord& file) {
    Search search(file);
    std::string searched;
    for (std::string top = existingFolder(file.path);; top = folderOf(top)) {
        std::string found = search.below(top, searched);
        if (!found.empty() || top == "/")
            return found;
        const auto here = FileIdentity::at(top), above = FileIdentity::at(folderOf(top));
        if (!here || !above || here->device != above->device)
            return {};
        searched = top;
    }
}

} // namespace zorvan::internal
