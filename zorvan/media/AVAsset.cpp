#include <zorvan/media/AVAsset.h>

#include <zorvan/platform/avfoundation/describeMedia.h>
#include <zorvan/platform/foundation/internal/UTF8.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace zorvan {
namespace {

using namespace avfoundation;

constexpr std::array<std::string_view, 3> dateIdentifiers{
    AVMetadataCommonIdentifierCreationDate, AVMetadataIdentifierQuickTimeMetadataCreationDate,
    AVMetadataIdentifierQuickTimeUserDataCreationDate};

constexpr std::array<std::string_view, 5> locationIdentifiers{
    AVMetadataCommonIdentifierLocation, "itsk/%A9xyz", "uiso/%A9xyz",
    AVMetadataIdentifierQuickTimeMetadataLocationISO6709,
    AVMetadataIdentifierQuickTimeUserDataLocationISO6709};

template <class Identifiers>
bool isOneOf(const Identifiers& identifiers, const AVMetadataItem& item) {
    return std::find(identifiers.begin(), identifiers.end(), item.identifier) != identifiers.end();
}

AVMediaType mediaType(MediaKind kind) {
    constexpr std::array types = {AVMediaType::video, AVMediaType::audio, AVMediaType::text,
                                  AVMediaType::other};
    return types[static_cast<std::size_t>(kind)];
}

CMTime asTime(const std::optional<MediaTime>& time, const CMTime& otherwise) {
    return time ? CMTimeMake(time->value, time->timescale) : otherwise;
}

PropertyList textOrBytes(const std::string& value) {
    if (internal::isUTF8(value))
        return value;
    const auto* const bytes = reinterpret_cast<const std::byte*>(value.data());
    return Data(bytes, bytes + value.size());
}

AVAsset::Parts partsOf(const URL& url) {
    AVAsset::Parts parts{.tracks = std::vector<AVAssetTrack>()};
    const auto file =
        url.isFileURL() ? describeMedia(url.path(), {.mayDecode = true}) : std::nullopt;
    if (!file)
        return parts;
    for (const MediaTrack& track : file->tracks)
        parts.tracks.value.push_back(
            {.mediaType = mediaType(track.kind),
             .nominalFrameRate = static_cast<float>(track.frameRate),
             .naturalSize = track.naturalSize,
             .preferredTransform = track.preferredTransform,
             .minFrameDuration = asTime(track.frameDuration, kCMTimeInvalid)});
    for (const MediaMetadata& entry : file->metadata)
        parts.metadata.push_back({entry.identifier, textOrBytes(entry.value)});
    parts.duration = asTime(file->duration, kCMTimeIndefinite);
    return parts;
}

std::string_view asText(const AVMetadataItem& item) {
    if (const auto* const text = item.value.as<std::string>())
        return *text;
    const auto* const bytes = item.value.as<Data>();
    return bytes ? std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size())
                 : std::string_view();
}

} // namespace

AVAsset::AVAsset(Parts parts)
    : tracks_(std::move(parts.tracks.value)), metadata_(std::move(parts.metadata)),
      duration_(parts.duration) {}

std::shared_ptr<const AVAsset> AVAsset::create(const URL& url) {
    const std::shared_ptr<AVAsset> asset(new AVAsset(partsOf(url)));
    asset->url_ = url;
    return asset;
}

std::shared_ptr<const AVAsset> AVAsset::create(Parts parts) {
    return std::shared_ptr<const AVAsset>(new AVAsset(std::move(parts)));
}

std::vector<AVAssetTrack> AVAsset::tracksWithMediaType(AVMediaType type) const {
    std::vector<AVAssetTrack> found;
    std::copy_if(tracks_.begin(), tracks_.end(), std::back_inserter(found),
                 [type](const AVAssetTrack& track) { return track.mediaType == type; });
    return found;
}

float AVAsset::computeFrameRate() const noexcept {
    float rate = 0;
    for (const AVAssetTrack& track : tracks_)
        if (track.mediaType == AVMediaType::video && track.nominalFrameRate != 0)
            rate = track.nominalFrameRate;
    return rate;
}

CGSize AVAsset::computeNaturalSize() const noexcept {
    CGSize size;
    for (const AVAssetTrack& track : tracks_)
        if (track.mediaType == AVMediaType::video)
            size = {std::max(size.width, track.naturalSize.width),
                    std::max(size.height, track.naturalSize.height)};
    return size;
}

CGAffineTransform AVAsset::computeNaturalTransform() const noexcept {
    CGAffineTransform transform;
    for (const AVAssetTrack& track : tracks_)
        if (track.mediaType == AVMediaType::video && !track.preferredTransform.isIdentity())
            transform = track.preferredTransform;
    return transform;
}

std::optional<Orientation> AVAsset::computeNaturalOrientation() const noexcept {
    const CGAffineTransform t = computeNaturalTransform();
    constexpr std::pair<std::array<double, 4>, Orientation> turns[] = {
        {{1, 0, 0, 1}, Orientation::up},
        {{0, 1, -1, 0}, Orientation::left},
        {{0, -1, 1, 0}, Orientation::right},
        {{-1, 0, 0, -1}, Orientation::down}};
    for (const auto& [turn, orientation] : turns)
        if (turn == std::array{t.a, t.b, t.c, t.d})
            return orientation;
    return std::nullopt;
}

std::optional<Date> AVAsset::parseCreationDate() const {
    for (const AVMetadataItem& item : metadata_)
        if (isOneOf(dateIdentifiers, item))
            if (const auto date = item.dateValue())
                return date;
    return std::nullopt;
}

std::optional<Location> AVAsset::parseLocationFromMetadata() const {
    for (const AVMetadataItem& item : metadata_)
        if (isOneOf(locationIdentifiers, item))
            if (const auto location = Location::make({.iso6709 = asText(item)}))
                return location;
    return std::nullopt;
}

} // namespace zorvan
