#include "Picture.h"

#include <zorvan/files/URL.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/ImageThumbailer.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

using namespace zorvan;

Picture::Picture(const URL& url) {
    if (const auto type = utiType(url))
        facts_.type = type->identifier();
    std::error_code problem;
    const bool isRegular = std::filesystem::is_regular_file(url.path(), problem);
    if (problem)
        facts_.error = problem.message();
    else if (!isRegular)
        facts_.error = "not a regular file";
    else if (!isReadable(url))
        facts_.error = std::strerror(EACCES);
    else
        source_ = CGImageSource::create(url);
    if (source_)
        readFacts();
}

void Picture::readFacts() {
    if (auto type = source_->type())
        facts_.type = std::move(type);
    const auto properties = source_->properties(0);
    facts_.size = CGImage::imageSize(properties);
    facts_.uprightSize = CGImage::orientedImageSize(properties);
    if (!facts_.size) {
        facts_.error = source_->error();
        if (facts_.error.empty())
            facts_.error = "not a picture";
        return;
    }
    const auto orientation = properties->find(kCGImagePropertyOrientation);
    if (orientation == properties->end())
        return;
    if (const auto* number = orientation->second.as<NSNumber>())
        facts_.orientation = number->int64Value();
}

CGImage::Pointer Picture::thumbnail(std::int64_t maximumSize) {
    if (!facts_.error.empty())
        return nullptr;
    const ImageThumbailer thumbnailer{.maximumPixelSize = static_cast<double>(maximumSize)};
    auto image = source_->thumbnail(0, thumbnailer.coreImageDictionary());
    if (!image) {
        facts_.error = source_->error();
        if (facts_.error.empty())
            facts_.error = "the picture cannot be decoded";
    }
    return image;
}
