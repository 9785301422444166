#include <zorvan/platform/avfoundation/internal/MovieInput.h>

#include <zorvan/platform/avfoundation/internal/containers.h>
#include <zorvan/platform/avfoundation/internal/quietFFmpeg.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <span>

namespace zorvan::avfoundation {
namespace {

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EACCES);
}

} // namespace

std::unique_ptr<MovieInput> MovieInput::open(const std::string& path, bool mayDecode) {
    quietFFmpeg();
    auto input = std::make_unique<MovieInput>();
    input->file_ = FileBytes::open(path);
    if (!input->file_)
        return nullptr;
    AVFormatContext* context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->pb = input->file_->context();
    context->io_open = &refuseToOpen;
    context->format_whitelist = av_strdup(readContainers);
    context->protocol_whitelist = av_strdup("file");
    // A list that holds no decoder's name admits none.
    if (!mayDecode)
        context->codec_whitelist = av_strdup("none");
    // On failure it frees the context.
    if (avformat_open_input(&context, nullptr, nullptr, nullptr) < 0)
        return nullptr;
    input->context_.reset(context);
    return input;
}

bool isCover(const AVStream& stream) noexcept {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isVideo(const AVStream& stream) noexcept {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream);
}

double positive(AVRational rational) noexcept {
    return rational.num > 0 && rational.den > 0 ? av_q2d(rational) : 0;
}

CGSize naturalSize(AVFormatContext& input, AVStream& stream) noexcept {
    const double width = std::max(stream.codecpar->width, 0);
    const double height = std::max(stream.codecpar->height, 0);
    const double pixelRatio = positive(av_guess_sample_aspect_ratio(&input, &stream, nullptr));
    return {pixelRatio > 0 ? std::round(width * pixelRatio) : width, height};
}

namespace {

/// The stream's display matrix as it is stored; empty when it has none. FFmpeg 6.1 and later have
/// it among the parameters of the codec; the other way is that of Debian 12's 5.1, and goes with
/// it.
std::span<const std::uint8_t> displayMatrix(const AVStream& stream) noexcept {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    const AVPacketSideData* const data =
        av_packet_side_data_get(stream.codecpar->coded_side_data,
                                stream.codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data ? std::span<const std::uint8_t>(data->data, data->size)
                : std::span<const std::uint8_t>();
#else
    std::size_t size = 0;
    const auto* const bytes = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return {bytes, bytes ? size : 0};
#endif
}

} // namespace

CGAffineTransform preferredTransform(const AVStream& stream) noexcept {
    const std::span bytes = displayMatrix(stream);
    std::int32_t matrix[9];
    if (bytes.size() < sizeof matrix)
        return CGAffineTransform::identity;
    std::copy_n(bytes.data(), sizeof matrix, reinterpret_cast<std::uint8_t*>(matrix));
    constexpr double one = 1 << 16;
    return {matrix[0] / one, matrix[1] / one, matrix[3] / one,
            matrix[4] / one, matrix[6] / one, matrix[7] / one};
}

} // namespace zorvan::avfoundation
