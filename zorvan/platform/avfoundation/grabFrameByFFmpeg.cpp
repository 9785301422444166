#include <zorvan/platform/avfoundation/internal/MovieInput.h>
#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/graphics/ExactTransforms.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswscale/swscale.h>
}

namespace zorvan::avfoundation {
namespace {

template <class Object, void (*release)(Object**)>
struct ReleaseByReference {
    void operator()(Object* object) const noexcept { release(&object); }
};
using Decoder =
    std::unique_ptr<AVCodecContext, ReleaseByReference<AVCodecContext, avcodec_free_context>>;
using Packet = std::unique_ptr<AVPacket, ReleaseByReference<AVPacket, av_packet_free>>;
using Frame = std::unique_ptr<AVFrame, ReleaseByReference<AVFrame, av_frame_free>>;
using Scaler = std::unique_ptr<SwsContext, Release<sws_freeContext>>;

/// More than any camera's, and little enough for a few to be in memory.
constexpr std::int64_t maximumPixelCount = std::int64_t{1} << 27;

/// A search may end behind the picture that is wanted; it is then begun so much earlier, and at
/// last at the start.
constexpr double stepsBack[] = {0, 1, 10, INFINITY};

Frame makeFrame() {
    Frame frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

AVStream* firstVideo(const MovieInput& input) {
    const auto streams = input.streams();
    const auto found =
        std::ranges::find_if(streams, [](const AVStream* stream) { return isVideo(*stream); });
    return found == streams.end() ? nullptr : *found;
}

/// As players do: libmpv 0.40, which comes with FFmpeg 7, begins where the edits of a track say;
/// 0.35, with FFmpeg 5, reads past them.
constexpr bool playersApplyEdits = LIBAVFORMAT_VERSION_MAJOR >= 61;

/// The first video track of a movie; null, with all else, when there is none.
struct OpenTrack {
    std::unique_ptr<MovieInput> input;
    AVStream* stream = nullptr;
};

OpenTrack openTrack(const std::string& path) {
    OpenTrack track{MovieInput::open(path, {.appliesEdits = playersApplyEdits})};
    if (!track.input || !track.input->readPackets())
        return {};
    track.stream = firstVideo(*track.input);
    for (AVStream* other : track.input->streams())
        if (other != track.stream)
            other->discard = AVDISCARD_ALL;
    return track;
}

/// The pictures of a track, one after the other from where it was last sought to.
class FrameReader {
public:
    FrameReader(std::string path, OpenTrack track, Decoder decoder)
        : path_(std::move(path)), track_(std::move(track)), decoder_(std::move(decoder)),
          packet_(av_packet_alloc()) {
        if (!packet_)
            throw std::bad_alloc();
    }

    AVFormatContext& context() const noexcept { return track_.input->context(); }
    AVStream& stream() const noexcept { return *track_.stream; }

    /// To the key picture at or before the time, where the file has an index. The start is sought
    /// before itself, because its first picture may be stored before its time; some containers
    /// refuse that. A search that fails has read on in the file, and those without an index or
    /// times know no other: they are read from their beginning.
    void seek(double seconds) {
        avcodec_flush_buffers(decoder_.get());
        isAtEnd_ = false;
        nextSecond_.reset();
        const double wanted = seconds > firstSecond() ? origin() + seconds : start() - 1;
        if (!seekInFile(wanted) && !seekInFile(start()))
            openAnew();
    }

    /// When the movie begins, as players count: before 0 where its beginning was cut off.
    double firstSecond() const { return start() - origin(); }

    bool read(AVFrame& frame) {
        for (;;) {
            const int result = avcodec_receive_frame(decoder_.get(), &frame);
            if (result >= 0)
                setTime(frame);
            if (result != AVERROR(EAGAIN))
                return result >= 0;
            if (isAtEnd_)
                return false;
            sendPacket();
        }
    }

    /// As players count.
    double secondsOf(const AVFrame& frame) const {
        if (frame.best_effort_timestamp == AV_NOPTS_VALUE)
            return 0;
        return static_cast<double>(frame.best_effort_timestamp) * positive(stream().time_base) -
               origin();
    }

private:
    double start() const {
        const std::int64_t microseconds = context().start_time;
        return microseconds == AV_NOPTS_VALUE ? 0
                                              : static_cast<double>(microseconds) / AV_TIME_BASE;
    }

    /// What is 0 to players.
    double origin() const { return track_.input->countsFromZero() ? 0 : start(); }

    bool seekInFile(double time) {
        const double unit = positive(stream().time_base);
        return av_seek_frame(&context(), stream().index, unit > 0 ? inUnits(time / unit) : 0,
                             AVSEEK_FLAG_BACKWARD) >= 0;
    }

    static std::int64_t inUnits(double count) noexcept {
        return static_cast<std::int64_t>(std::clamp(count, -0x1p62, 0x1p62));
    }

    /// Of a picture, by the rate that the stream states; 0 when it states none.
    double length() const noexcept {
        const double rate = positive(av_guess_frame_rate(&context(), &stream(), nullptr));
        return rate > 0 ? 1 / rate : 0;
    }

    /// Streams without a container have no times, nor have the last pictures of an AVI, which come
    /// out when nothing is left to be read: one comes after the other. The time of the others in an
    /// AVI is when that was stored which brought them out.
    void setTime(AVFrame& frame) {
        const double unit = positive(stream().time_base);
        const bool isOfStorage = track_.input->timesAreOfStorage();
        const std::int64_t time = frame.best_effort_timestamp;
        double seconds = nextSecond_.value_or(start());
        if (time != AV_NOPTS_VALUE)
            seconds = static_cast<double>(time) * unit -
                      (isOfStorage ? decoder_->has_b_frames * length() : 0);
        if (unit > 0 && (isOfStorage || time == AV_NOPTS_VALUE))
            frame.best_effort_timestamp = inUnits(std::round(seconds / unit));
        nextSecond_ = seconds + length();
    }

    /// The pictures of an AVI that are still to come out are those shown when the last were stored.
    void noteStorage(const AVPacket& packet) {
        if (!track_.input->timesAreOfStorage() || packet.dts == AV_NOPTS_VALUE)
            return;
        const double stored = static_cast<double>(packet.dts) * positive(stream().time_base);
        const int others = std::max(decoder_->has_b_frames - 1, 0);
        nextSecond_ = std::max(nextSecond_.value_or(stored), stored - others * length());
    }

    void openAnew() {
        OpenTrack again = openTrack(path_);
        isAtEnd_ = !again.stream;
        if (again.stream)
            track_ = std::move(again);
    }

    void sendPacket() {
        if (av_read_frame(&context(), packet_.get()) < 0) {
            isAtEnd_ = true;
            avcodec_send_packet(decoder_.get(), nullptr);
            return;
        }
        if (packet_->stream_index == stream().index) {
            noteStorage(*packet_);
            avcodec_send_packet(decoder_.get(), packet_.get()); // what is damaged is passed over
        }
        av_packet_unref(packet_.get());
    }

    const std::string path_;
    OpenTrack track_;
    Decoder decoder_;
    Packet packet_;
    bool isAtEnd_ = false;
    std::optional<double> nextSecond_; // in the file, of the next picture if it has no time
};

Decoder openDecoder(const AVStream& stream, bool onlyKeys) {
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    Decoder decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        return nullptr;
    decoder->pkt_timebase = stream.time_base;
    decoder->max_pixels = maximumPixelCount;
    decoder->thread_count = 1; // threads decode ahead, and one picture is wanted
    if (onlyKeys)
        decoder->skip_frame = AVDISCARD_NONKEY;
    return avcodec_open2(decoder.get(), codec, nullptr) >= 0 ? std::move(decoder) : nullptr;
}

/// A picture that begins by that time, from where the reader stands: the last one when it is to be
/// exact, else the first. Null when the first one begins later, unless `takesAny`.
Frame pictureBy(double seconds, FrameReader& reader, bool isExact, bool takesAny) {
    constexpr double hair = 1e-6; // times are rounded
    Frame best;
    for (Frame next = makeFrame(); reader.read(*next); next = makeFrame()) {
        const bool isLater = reader.secondsOf(*next) > seconds + hair;
        if (!isLater || (takesAny && !best))
            best = std::move(next);
        if (isLater || !isExact)
            break;
    }
    return best;
}

Frame find(double seconds, FrameReader& reader, bool isExact) {
    for (const double back : stepsBack) {
        reader.seek(seconds - back);
        const bool isLast = !(seconds - back > reader.firstSecond());
        Frame frame = pictureBy(seconds, reader, isExact, isLast);
        if (frame || isLast)
            return frame;
    }
    return nullptr;
}

/// The EXIF orientation of a picture that a track lays out so; 1 for what is neither a quarter turn
/// nor a mirror.
int orientationOf(const CGAffineTransform& transform) {
    constexpr std::array<double, 4> turns[] = {{1, 0, 0, 1},   {-1, 0, 0, 1}, {-1, 0, 0, -1},
                                               {1, 0, 0, -1},  {0, 1, 1, 0},  {0, 1, -1, 0},
                                               {0, -1, -1, 0}, {0, -1, 1, 0}};
    const std::array<double, 4> turn{transform.a, transform.b, transform.c, transform.d};
    const auto found = std::ranges::find(turns, turn);
    return found == std::end(turns) ? 1 : static_cast<int>(found - std::begin(turns)) + 1;
}

CGSize reduced(const CGSize& size, const CGSize& most) {
    const double x = most.width > 0 ? most.width / size.width : 1;
    const double y = most.height > 0 ? most.height / size.height : 1;
    const double scale = std::min({x, y, 1.0});
    return {std::max(std::round(size.width * scale), 1.0),
            std::max(std::round(size.height * scale), 1.0)};
}

/// Tells the colours as the movie means them; large pictures that do not say it mean BT.709.
void setColors(SwsContext* scaler, const AVFrame& frame) {
    constexpr int smallestLargeHeight = 720;
    const bool isStated = frame.colorspace != AVCOL_SPC_UNSPECIFIED;
    const int matrix = isStated                              ? frame.colorspace
                       : frame.height >= smallestLargeHeight ? AVCOL_SPC_BT709
                                                             : AVCOL_SPC_SMPTE170M;
    constexpr int one = 1 << 16;
    sws_setColorspaceDetails(scaler, sws_getCoefficients(matrix),
                             frame.color_range == AVCOL_RANGE_JPEG,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, one, one);
}

std::optional<Bitmap> pixelsOf(const AVFrame& frame, const CGSize& size) {
    const auto width = static_cast<int>(size.width), height = static_cast<int>(size.height);
    const Scaler scaler(
        sws_getContext(frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), width,
                       height, AV_PIX_FMT_RGBA, SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT,
                       nullptr, nullptr, nullptr));
    std::optional<Bitmap> bitmap = scaler ? Bitmap::make(width, height) : std::nullopt;
    if (!bitmap)
        return std::nullopt;
    setColors(scaler.get(), frame);
    std::uint8_t* const planes[] = {bitmap->data()};
    const int strides[] = {static_cast<int>(bitmap->bytesPerRow())};
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) <= 0)
        return std::nullopt;
    for (std::int64_t i = 3; i < bitmap->byteCount(); i += 4)
        bitmap->data()[i] = 255;
    return bitmap;
}

std::optional<GrabbedFrame> grabbed(const std::string& path, const FrameRequest& request) {
    OpenTrack track = openTrack(path);
    if (!track.stream)
        return std::nullopt;
    // Where the pictures after it tell the time of one, they are decoded.
    Decoder decoder =
        openDecoder(*track.stream, !request.isExact && !track.input->timesAreOfStorage());
    if (!decoder)
        return std::nullopt;
    FrameReader reader(path, std::move(track), std::move(decoder));
    const double seconds = std::isnan(request.seconds) ? 0 : std::max(request.seconds, 0.0);
    const Frame frame = find(seconds, reader, request.isExact);
    if (!frame)
        return std::nullopt;

    const int orientation =
        request.isUpright ? orientationOf(preferredTransform(reader.stream())) : 1;
    const bool isOnItsSide = orientation >= 5;
    const CGSize most = isOnItsSide ? request.maximumSize.flipped() : request.maximumSize;
    // The picture's own size: a stream may change it.
    const double ratio =
        positive(av_guess_sample_aspect_ratio(&reader.context(), &reader.stream(), frame.get()));
    const CGSize size(std::round(frame->width * (ratio > 0 ? ratio : 1)), frame->height);
    const bool isPicture = size.width >= 1 && size.height >= 1 &&
                           size.area() <= static_cast<double>(maximumPixelCount);
    std::optional<Bitmap> bitmap = isPicture ? pixelsOf(*frame, reduced(size, most)) : std::nullopt;
    if (bitmap && orientation != 1)
        bitmap = oriented(*bitmap, orientation);
    if (!bitmap)
        return std::nullopt;
    return GrabbedFrame{std::move(*bitmap), reader.secondsOf(*frame)};
}

} // namespace

extern "C" void zorvanGrabFrame(const std::string& path, const FrameRequest& request,
                                std::optional<GrabbedFrame>& result) {
    result = grabbed(path, request);
}

} // namespace zorvan::avfoundation
