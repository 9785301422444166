#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGSize.h>

#include <memory>
#include <span>
#include <string>

extern "C" {
#include <libavcodec/version.h>
#include <libavformat/avformat.h>
}

namespace zorvan::avfoundation {

class FileBytes;

/// A movie or sound file that FFmpeg has opened, and no other file with it.
class MovieInput {
public:
    struct Reading {
        /// Whether pictures may be decoded to find out more about the tracks.
        bool mayDecode = true;
        /// Whether what the edits of an MP4 or QuickTime file leave out is passed over; else it is
        /// read, as libmpv does, with times before 0 or behind the end.
        bool appliesEdits = true;
    };
    /// Empty when it is no regular file, or none of a known container.
    static std::unique_ptr<MovieInput> open(const std::string& path, const Reading& reading);
    MovieInput() noexcept;
    ~MovieInput();

    AVFormatContext& context() const noexcept { return *context_; }
    std::span<AVStream* const> streams() const noexcept {
        return {context_->streams, context_->nb_streams};
    }
    /// Whether players count time as the file does. Elsewhere the first time in the file is 0 to
    /// them.
    bool countsFromZero() const noexcept;
    /// Whether the file tells when pictures are stored, as an AVI does, and not when they are
    /// shown.
    bool timesAreOfStorage() const noexcept;
    /// Reads packets where the header left something out; false when they cannot be read.
    bool readPackets() const noexcept {
        return avformat_find_stream_info(context_.get(), nullptr) >= 0;
    }

private:
    struct CloseInput {
        void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
    };

    std::unique_ptr<FileBytes> file_;
    std::unique_ptr<AVFormatContext, CloseInput> context_;
};

/// Whether it is the picture of a cover.
bool isCover(const AVStream& stream) noexcept;
bool isVideo(const AVStream& stream) noexcept;

/// In square pixels, before the transform.
CGSize naturalSize(AVFormatContext& input, AVStream& stream) noexcept;
CGAffineTransform preferredTransform(const AVStream& stream) noexcept;

/// 0 for what is not above it.
double positive(AVRational rational) noexcept;

} // namespace zorvan::avfoundation
