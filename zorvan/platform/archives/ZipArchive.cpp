#include <zorvan/platform/archives/ZipArchive.h>

#include <zorvan/platform/archives/internal/zipWriting.h>
#include <zorvan/platform/foundation/internal/functionBeside.h>

namespace zorvan {

std::optional<Data> zipArchiveOfFolder(const std::string& path) {
    using internal::zorvanWriteZipArchive;
    static const auto write = ZORVAN_FUNCTION(ZORVAN_ZIP_WRITING, zorvanWriteZipArchive);
    std::optional<Data> archive;
    if (write)
        write(path, archive);
    return archive;
}

} // namespace zorvan
