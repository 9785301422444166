#include "Picture.h"

#include <zorvan/files/URL.h>
#include <zorvan/media/AVAssetImageGenerator.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/ImageThumbailer.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

using namespace zorvan;

namespace {

/// What EXIF calls the way in which a movie is turned; mirrored ones count as they are.
std::int64_t exifOrientation(const std::optional<Orientation>& orientation) {
    switch (orientation.value_or(Orientation::up)) {
    case Orientation::Case::up:
        return 1;
    case Orientation::Case::down:
        return 3;
    case Orientation::Case::left:
        return 6;
    case Orientation::Case::right:
        return 8;
    }
    return 1;
}

} // namespace

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
    if (source_ && (source_->type() || !readMovieFacts(url)))
        readFacts();
}

bool Picture::readMovieFacts(const URL& url) {
    const auto asset = AVAsset::create(url);
    const CGSize size = asset->computeNaturalSize();
    if (!(size.area() > 0))
        return false;
    if (!facts_.type || !UTIType({.identifier = *facts_.type}).conforms(UTIType::movie()))
        facts_.type = UTIType::movie().identifier();
    facts_.size = facts_.uprightSize = size;
    facts_.orientation = exifOrientation(asset->computeNaturalOrientation());
    if (facts_.orientation >= 5)
        facts_.uprightSize = size.flipped();
    facts_.movie =
        MovieFacts{.frameRate = asset->computeFrameRate(), .date = asset->parseCreationDate()};
    if (asset->duration().isNumeric())
        facts_.movie->duration = asset->duration().seconds();
    movie_ = asset;
    return true;
}

CGImage::Pointer Picture::movieThumbnail(std::int64_t maximumSize) {
    // The first picture is often black.
    const double seconds = facts_.movie->duration.value_or(0) / 10;
    const auto side = static_cast<double>(maximumSize);
    const AVAssetImageGenerator generator{
        .asset = movie_, .appliesPreferredTrackTransform = true, .maximumSize = {side, side}};
    const CGImage::Pointer image = generator.copyCGImage(CMTime({.seconds = seconds})).image;
    if (!image)
        facts_.error = "the movie cannot be decoded";
    return image;
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
    if (movie_)
        return movieThumbnail(maximumSize);
    const ImageThumbailer thumbnailer{.maximumPixelSize = static_cast<double>(maximumSize)};
    auto image = source_->thumbnail(0, thumbnailer.coreImageDictionary());
    if (!image) {
        facts_.error = source_->error();
        if (facts_.error.empty())
            facts_.error = "the picture cannot be decoded";
    }
    return image;
}
