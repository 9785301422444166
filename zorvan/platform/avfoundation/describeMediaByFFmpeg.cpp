#include <zorvan/platform/avfoundation/internal/MovieInput.h>
#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>
#include <zorvan/platform/foundation/internal/ascii.h>

#include <algorithm>
#include <string>
#include <string_view>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace zorvan::avfoundation {
namespace {

constexpr AVRational microsecond{1, AV_TIME_BASE};

double frameRate(const AVStream& stream) {
    if (const double average = positive(stream.avg_frame_rate); average > 0)
        return average;
    const double unit = positive(stream.time_base);
    if (stream.nb_frames > 0 && stream.duration > 0 && unit > 0)
        return static_cast<double>(stream.nb_frames) /
               (static_cast<double>(stream.duration) * unit);
    return positive(stream.r_frame_rate);
}

/// A QuickTime header lists how long each picture lasts, and FFmpeg sets this rate when it opens
/// one whose pictures all last equally long. Later, and for other containers, it is a guess.
std::optional<MediaTime> frameDuration(const AVFormatContext& input, const AVStream& stream) {
    const AVRational rate = stream.r_frame_rate;
    if (std::string_view(input.iformat->name).substr(0, 4) != "mov," || positive(rate) == 0)
        return std::nullopt;
    return MediaTime{rate.den, rate.num};
}

MediaKind kind(const AVStream& stream) {
    switch (stream.codecpar->codec_type) {
    case AVMEDIA_TYPE_VIDEO:
        return MediaKind::video;
    case AVMEDIA_TYPE_AUDIO:
        return MediaKind::audio;
    case AVMEDIA_TYPE_SUBTITLE:
        return MediaKind::text;
    default:
        return MediaKind::other;
    }
}

/// Whether the header left something out that the packets could tell. Where the number of frames is
/// known, packets would not tell more about the rate.
bool needsPackets(const AVFormatContext& input) {
    if ((input.ctx_flags & AVFMTCTX_NOHEADER) != 0)
        return true;
    return std::any_of(input.streams, input.streams + input.nb_streams, [](const AVStream* s) {
        const bool hasSize = s->codecpar->width > 0 && s->codecpar->height > 0;
        return isVideo(*s) && !(hasSize && (s->nb_frames > 0 || frameRate(*s) > 0));
    });
}

std::optional<MediaTime> asTime(std::int64_t value, AVRational unit) noexcept {
    if (value == AV_NOPTS_VALUE || value < 0 || unit.num <= 0 || unit.den <= 0)
        return std::nullopt;
    if (unit.num == 1)
        return MediaTime{value, unit.den};
    const std::int64_t microseconds = av_rescale_q(value, unit, microsecond);
    return microseconds < 0 ? std::nullopt : std::optional(MediaTime{microseconds, AV_TIME_BASE});
}

/// When the track begins, as players count, in its own unit. What of it comes before 0 is not
/// played.
std::int64_t startOf(const AVStream& stream, const MovieInput& input) noexcept {
    const std::int64_t origin = input.countsFromZero() ? 0 : input.context().start_time;
    if (stream.start_time == AV_NOPTS_VALUE || origin == AV_NOPTS_VALUE)
        return 0;
    const std::int64_t before = av_rescale_q(origin, microsecond, stream.time_base);
    std::int64_t start = 0;
    return __builtin_sub_overflow(stream.start_time, before, &start) ? 0 : std::max(start, {});
}

/// When the track ends; absent when the file does not say how long it is.
std::optional<MediaTime> endOf(const AVStream& stream, const MovieInput& input) noexcept {
    std::int64_t end = 0;
    if (!asTime(stream.duration, stream.time_base) ||
        __builtin_add_overflow(startOf(stream, input), stream.duration, &end))
        return std::nullopt;
    return asTime(end, stream.time_base);
}

bool isEarlier(const MediaTime& a, const MediaTime& b) noexcept {
    return av_compare_ts(a.value, {1, a.timescale}, b.value, {1, b.timescale}) < 0;
}

/// Until the track that ends last does, since headers round to their own unit; else that of the
/// header.
std::optional<MediaTime> duration(const MovieInput& input) {
    std::optional<MediaTime> last;
    for (const AVStream* stream : input.streams()) {
        const auto end = isCover(*stream) ? std::nullopt : endOf(*stream, input);
        if (end && (!last || isEarlier(*last, *end)))
            last = end;
    }
    return last ? last : asTime(input.context().duration, microsecond);
}

/// Of the date that a container states for itself, and of any date in a container that has but one
/// place for it.
constexpr std::string_view containerDateIdentifier = "common/creationDate";

bool isSameWord(std::string_view given, std::string_view lower) {
    return std::equal(given.begin(), given.end(), lower.begin(), lower.end(),
                      [](char g, char l) { return internal::lowered(g) == l; });
}

/// How the name that FFmpeg gives to metadata is told as an identifier, by the container it came
/// from. FFmpeg does not tell all places apart: what it calls "location" in an ISO file is taken
/// for user data, "date" there for the text of a media library.
std::string identifier(const AVFormatContext& input, std::string_view name) {
    const std::string_view names = input.iformat->name;
    const std::string_view container = names.substr(0, names.find(','));
    if (name == "creation_time")
        return std::string(containerDateIdentifier);
    if (container != "mov") {
        if (isSameWord(name, "location"))
            return "common/location";
        if (isSameWord(name, "date"))
            return std::string(containerDateIdentifier);
        return std::string(container) + '/' + std::string(name);
    }
    if (name.starts_with("com."))
        return "mdta/" + std::string(name);
    // A QuickTime file need not state a brand.
    const AVDictionaryEntry* const brand = av_dict_get(input.metadata, "major_brand", nullptr, 0);
    const bool isQuickTime = !brand || std::string_view(brand->value) == "qt  ";
    if (name == "date")
        return isQuickTime ? "udta/%A9day" : "itsk/%A9day";
    const std::string place = isQuickTime ? "udta/" : "uiso/";
    return place + (name == "location" ? "%A9xyz" : std::string(name));
}

/// Whether it tells of the format of the file rather than of what is in it.
bool isOfFileFormat(std::string_view name) noexcept {
    return name == "major_brand" || name == "minor_version" || name == "compatible_brands";
}

std::vector<MediaMetadata> metadata(const AVFormatContext& input) {
    std::vector<MediaMetadata> entries;
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(input.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)))
        if (!isOfFileFormat(entry->key))
            entries.push_back({identifier(input, entry->key), entry->value});
    // The date of the container itself is that of its last rewriting; what people or cameras wrote
    // goes before it.
    std::stable_partition(entries.begin(), entries.end(), [](const MediaMetadata& e) {
        return e.identifier != containerDateIdentifier;
    });
    return entries;
}

std::optional<MediaDescription> described(const std::string& path,
                                          const MediaReadingOptions& options) {
    const auto input = MovieInput::open(path, {.mayDecode = options.mayDecode});
    if (!input)
        return std::nullopt;
    AVFormatContext& context = input->context();
    const bool isGuess = needsPackets(context);
    if (isGuess && !input->readPackets())
        return std::nullopt;

    MediaDescription description;
    for (AVStream* stream : input->streams()) {
        if (isCover(*stream))
            continue;
        MediaTrack& track = description.tracks.emplace_back();
        track.kind = kind(*stream);
        if (track.kind != MediaKind::video)
            continue;
        track.frameRate = frameRate(*stream);
        if (!isGuess)
            track.frameDuration = frameDuration(context, *stream);
        track.naturalSize = naturalSize(context, *stream);
        track.preferredTransform = preferredTransform(*stream);
    }
    if (description.tracks.empty())
        return std::nullopt;
    description.metadata = metadata(context);
    description.duration = duration(*input);
    return description;
}

} // namespace

extern "C" void zorvanDescribeMedia(const std::string& path, const MediaReadingOptions& options,
                                    std::optional<MediaDescription>& result) {
    result = described(path, options);
}

} // namespace zorvan::avfoundation
