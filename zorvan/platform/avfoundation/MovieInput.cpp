#include <zorvan/platform/avfoundation/internal/MovieInput.h>

#include <zorvan/platform/avfoundation/internal/StatedLengths.h>
#include <zorvan/platform/avfoundation/internal/containers.h>
#include <zorvan/platform/avfoundation/internal/sampleCounts.h>
#include <zorvan/platform/foundation/internal/openForReading.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <new>
#include <span>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace zorvan::avfoundation {

namespace {

struct FreeContext {
    void operator()(AVIOContext* context) const noexcept {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
};

} // namespace

/// The bytes of one regular file as FFmpeg reads them. What is open is this file and no other: the
/// names that a container holds lead nowhere.
class FileBytes {
public:
    /// Empty when the path leads to no regular file that can be read.
    static std::unique_ptr<FileBytes> open(const std::string& path) {
        struct stat status {};
        internal::FileDescriptor opened = internal::openRegularFile(AT_FDCWD, path.c_str(), status);
        if (!opened)
            return nullptr;
        return std::unique_ptr<FileBytes>(new FileBytes(std::move(opened), status.st_size));
    }
    FileBytes(const FileBytes&) = delete;

    /// By its bytes. Null when FFmpeg knows none, and for a movie whose index would take far more
    /// memory than it has bytes.
    const AVInputFormat* format() {
        const AVInputFormat* format = nullptr;
        const int score =
            av_probe_input_buffer2(makeContext().get(), &format, nullptr, nullptr, 0, 0);
        if (score < 0)
            return nullptr;
        const bool isInBoxes = std::string_view(format->name).starts_with("mov,");
        if (isInBoxes && !samplesFit(file_.get(), size_))
            return nullptr;
        lengths_ = {format->name, file_.get(), size_};
        return format;
    }
    /// The bytes from the first on, for a file of `format()`.
    AVIOContext* context() {
        position_ = 0;
        context_ = makeContext();
        return context_.get();
    }

private:
    using Context = std::unique_ptr<AVIOContext, FreeContext>;
    static constexpr std::size_t bufferSize = 1 << 15;
    static constexpr int mostReadsAtEnd = 1000;

    FileBytes(internal::FileDescriptor file, std::int64_t size)
        : file_(std::move(file)), size_(size) {}

    Context makeContext() {
        auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
        AVIOContext* const context =
            buffer ? avio_alloc_context(buffer, bufferSize, 0, this, &read, nullptr, &seek)
                   : nullptr;
        if (!context) {
            av_free(buffer);
            throw std::bad_alloc();
        }
        return Context(context);
    }

    static int read(void* self, std::uint8_t* buffer, int size) {
        auto& file = *static_cast<FileBytes*>(self);
        const std::span to(buffer, std::min(static_cast<std::size_t>(size), bufferSize));
        return file.read(to);
    }
    /// Also looks at the bytes before, where a statement may begin.
    int read(std::span<std::uint8_t> to) {
        const auto lead = std::min<std::int64_t>(position_, StatedLengths::longest - 1);
        const std::int64_t start = position_ - lead;
        const ssize_t count = internal::uninterrupted([&] {
            return pread(file_.get(), window_.data(), to.size() + static_cast<std::size_t>(lead),
                         start);
        });
        if (count < 0)
            return AVERROR(errno);
        readsAtEnd_ = count <= lead ? readsAtEnd_ + 1 : 0;
        if (count <= lead)
            return AVERROR_EOF;
        if (!lengths_.fit({window_.data(), static_cast<std::size_t>(count)}, size_ - start))
            return AVERROR_INVALIDDATA;
        std::copy(window_.data() + lead, window_.data() + count, to.data());
        position_ += count - lead;
        return static_cast<int>(count - lead);
    }

    static std::int64_t seek(void* self, std::int64_t offset, int whence) {
        auto& file = *static_cast<FileBytes*>(self);
        const int from = whence & ~AVSEEK_FORCE;
        if (whence == AVSEEK_SIZE)
            return file.size_;
        // FFmpeg forgets at each seek that it was at the end, and would read there for minutes what
        // an index says to be of many entries.
        if (file.readsAtEnd_ > mostReadsAtEnd)
            return AVERROR(EIO);
        const std::int64_t base = from == SEEK_CUR   ? file.position_
                                  : from == SEEK_END ? file.size_
                                                     : 0;
        std::int64_t target = 0;
        if (__builtin_add_overflow(base, offset, &target) || target < 0)
            return AVERROR(EINVAL);
        return file.position_ = target;
    }

    const internal::FileDescriptor file_;
    const std::int64_t size_;
    std::int64_t position_ = 0;
    int readsAtEnd_ = 0; // one after the other
    StatedLengths lengths_;
    std::array<char, bufferSize + StatedLengths::longest> window_ = {};
    Context context_;
};

MovieInput::MovieInput() noexcept = default;
MovieInput::~MovieInput() = default;

namespace {

/// Keeps FFmpeg from writing to standard error about every broken file. A program that has set a
/// level of its own keeps it.
void quietFFmpeg() noexcept {
    static const bool once = [] {
        if (av_log_get_level() == AV_LOG_INFO) // FFmpeg's own beginning
            av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
    static_cast<void>(once);
}

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EACCES);
}

} // namespace

std::unique_ptr<MovieInput> MovieInput::open(const std::string& path, const Reading& reading) {
    quietFFmpeg();
    auto input = std::make_unique<MovieInput>();
    input->file_ = FileBytes::open(path);
    if (!input->file_)
        return nullptr;
    const AVInputFormat* const format = input->file_->format();
    if (!format)
        return nullptr;
    AVIOContext* const bytes = input->file_->context();
    AVFormatContext* context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->pb = bytes;
    context->io_open = &refuseToOpen;
    context->format_whitelist = av_strdup(readContainers);
    context->protocol_whitelist = av_strdup("file");
    // A list that holds no decoder's name admits none.
    if (!reading.mayDecode)
        context->codec_whitelist = av_strdup("none");
    AVDictionary* options = nullptr;
    if (!reading.appliesEdits)
        av_dict_set(&options, "advanced_editlist", "0", 0);
    // On failure it frees the context.
    const int result = avformat_open_input(&context, nullptr, format, &options);
    av_dict_free(&options);
    if (result < 0)
        return nullptr;
    input->context_.reset(context);
    // FFmpeg may go on where bytes were refused to it.
    return bytes->error == AVERROR_INVALIDDATA ? nullptr : std::move(input);
}

bool MovieInput::countsFromZero() const noexcept {
    const std::string_view name = context_->iformat->name;
    return name.starts_with("mov,") || name.starts_with("matroska,");
}

bool MovieInput::timesAreOfStorage() const noexcept {
    return std::string_view(context_->iformat->name) == "avi";
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
