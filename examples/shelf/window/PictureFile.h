#pragma once

#include "PictureList.h"

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <memory>
#include <string>

/// A picture or movie file as the walk has met it. One that has changed since is another one.
struct PictureFile {
    using Pointer = std::shared_ptr<const PictureFile>;

    zorvan::URL url;
    std::string name;   // below the folder that was opened
    std::string title;  // the last part of the name, fit to be shown
    std::string folder; // the part before it, fit to be shown; empty at the top
    std::string kind;   // "JPEG", "Movies", ...: by the extension, so that no file need be opened
    zorvan::Date modified;
    std::int64_t byteCount = 0;

    friend bool operator==(const PictureFile&, const PictureFile&) = default;
};

/// What the file system knows of it; a file that has gone meanwhile is from 1970 and empty.
PictureFile::Pointer lookAt(const ListedFile& file);

/// "2024-05-31 14:34", in the time of the place.
std::string modifiedText(const PictureFile& file);
/// "512 B", "1.2 MB".
std::string byteCountText(const PictureFile& file);
