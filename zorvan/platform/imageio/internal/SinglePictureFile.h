#pragma once

#include <zorvan/platform/imageio/internal/HeifMeta.h>

#include <string_view>
#include <vector>

namespace zorvan::imageio {

/// A picture as a codec wrote it. Its properties tell how it is coded, but not its size, nor its
/// colours, whose description is empty where there is none.
struct CodedPicture {
    std::string_view type;
    PixelSize size;
    std::vector<HeifBox> properties;
    Data colours;
    Data data;
};

/// A HEIF file of that picture; of two, the second is the alpha of the first.
Data singlePictureFile(const std::vector<CodedPicture>& pictures, bool isPremultiplied);

} // namespace zorvan::imageio
