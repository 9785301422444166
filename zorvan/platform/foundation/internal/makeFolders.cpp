#include <zorvan/platform/foundation/internal/makeFolders.h>

#include <zorvan/platform/foundation/internal/placeItem.h>

#include <cerrno>
#include <sys/stat.h>

namespace zorvan::internal {

namespace {

int makeFolder(const std::string& path, mode_t mode) {
    if (::mkdir(path.c_str(), mode) != 0)
        return errno == EEXIST ? 0 : errno;
    // What is waited for within it later needs it too.
    synchroniseFolder(folderOf(path));
    return 0;
}

} // namespace

int makeFolders(const std::string& path, mode_t mode) {
    int onTheWay = 0;
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        const int error = makeFolder(path.substr(0, slash), mode);
        if (onTheWay == 0)
            onTheWay = error;
    }
    const int error = makeFolder(path, mode);
    return error == ENOENT && onTheWay != 0 ? onTheWay : error;
}

} // namespace zorvan::internal
