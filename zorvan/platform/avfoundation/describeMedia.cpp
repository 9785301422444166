#include <zorvan/platform/avfoundation/describeMedia.h>

#include <zorvan/platform/avfoundation/internal/FileBytes.h>
#include <zorvan/platform/avfoundation/internal/containers.h>
#include <zorvan/platform/avfoundation/internal/metadataIdentifier.h>
#include <zorvan/platform/avfoundation/internal/quietFFmpeg.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <span>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/mathematics.h>
}

namespace zorvan::avfoundation {
namespace {

struct CloseInput {
    void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
};
using Input = std::unique_ptr<AVFormatContext, CloseInput>;

constexpr AVRational microsecond{1, AV_TIME_BASE};

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EACCES);
}

Input openInput(const FileBytes& file, const MediaReadingOptions& options) {
    AVFormatContext* context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->pb = file.context();
    context->io_open = &refuseToOpen;
    context->format_whitelist = av_strdup(readContainers);
    context->protocol_whitelist = av_strdup("file");
    // A list that holds no decoder's name admits none.
    if (!options.mayDecode)
        context->codec_whitelist = av_strdup("none");
    // On failure it frees the context.
    return avformat_open_input(&context, nullptr, nullptr, nullptr) < 0 ? nullptr : Input(context);
}

std::span<AVStream* const> streams(const AVFormatContext& input) {
    return {input.streams, input.nb_streams};
}

bool isCover(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isVideo(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream);
}

double positive(AVRational rational) {
    return rational.num > 0 && rational.den > 0 ? av_q2d(rational) : 0;
}

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

CGSize naturalSize(AVFormatContext& input, AVStream& stream) {
    const double width = std::max(stream.codecpar->width, 0);
    const double height = std::max(stream.codecpar->height, 0);
    const double pixelRatio = positive(av_guess_sample_aspect_ratio(&input, &stream, nullptr));
    return {pixelRatio > 0 ? std::round(width * pixelRatio) : width, height};
}

CGAffineTransform preferredTransform(const AVStream& stream) {
    std::size_t size = 0;
    const auto* const bytes = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    std::int32_t matrix[9];
    if (!bytes || size < sizeof matrix)
        return CGAffineTransform::identity;
    std::copy_n(bytes, sizeof matrix, reinterpret_cast<std::uint8_t*>(matrix));
    constexpr double one = 1 << 16;
    return {matrix[0] / one, matrix[1] / one, matrix[3] / one,
            matrix[4] / one, matrix[6] / one, matrix[7] / one};
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

std::optional<MediaTime> asTime(std::int64_t value, AVRational unit) {
    if (value == AV_NOPTS_VALUE || value < 0 || unit.num <= 0 || unit.den <= 0)
        return std::nullopt;
    if (unit.num == 1)
        return MediaTime{value, unit.den};
    const std::int64_t microseconds = av_rescale_q(value, unit, microsecond);
    return microseconds < 0 ? std::nullopt : std::optional(MediaTime{microseconds, AV_TIME_BASE});
}

/// Of the track that lasts longest, since headers round to their own unit; else of the header.
std::optional<MediaTime> duration(const AVFormatContext& input) {
    const AVStream* longest = nullptr;
    for (const AVStream* stream : streams(input)) {
        if (isCover(*stream) || !asTime(stream->duration, stream->time_base))
            continue;
        if (!longest || av_compare_ts(longest->duration, longest->time_base, stream->duration,
                                      stream->time_base) < 0)
            longest = stream;
    }
    return longest ? asTime(longest->duration, longest->time_base)
                   : asTime(input.duration, microsecond);
}

std::vector<MediaMetadata> metadata(const AVFormatContext& input) {
    const MetadataNames names(input);
    std::vector<MediaMetadata> entries;
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(input.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)))
        if (!MetadataNames::isOfFileFormat(entry->key))
            entries.push_back({names.identifier(entry->key), entry->value});
    // The date of the container itself is that of its last rewriting; what people or cameras wrote
    // goes before it.
    std::stable_partition(entries.begin(), entries.end(), [](const MediaMetadata& e) {
        return e.identifier != containerDateIdentifier;
    });
    return entries;
}

} // namespace

std::optional<MediaDescription> describeMedia(const std::string& path,
                                              const MediaReadingOptions& options) {
    quietFFmpeg();
    const auto file = FileBytes::open(path);
    if (!file)
        return std::nullopt;
    const Input input = openInput(*file, options);
    if (!input)
        return std::nullopt;
    const bool isGuess = needsPackets(*input);
    if (isGuess && avformat_find_stream_info(input.get(), nullptr) < 0)
        return std::nullopt;

    MediaDescription description;
    for (AVStream* stream : streams(*input)) {
        if (isCover(*stream))
            continue;
        MediaTrack& track = description.tracks.emplace_back();
        track.kind = kind(*stream);
        if (track.kind != MediaKind::video)
            continue;
        track.frameRate = frameRate(*stream);
        if (!isGuess)
            track.frameDuration = frameDuration(*input, *stream);
        track.naturalSize = naturalSize(*input, *stream);
        track.preferredTransform = preferredTransform(*stream);
    }
    if (description.tracks.empty())
        return std::nullopt;
    description.metadata = metadata(*input);
    description.duration = duration(*input);
    return description;
}

} // namespace zorvan::avfoundation
