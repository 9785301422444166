#pragma once

#include <zorvan/media/AVAsset.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// What is known of a movie beyond what is known of pictures.
struct MovieFacts {
    std::optional<double> duration = {}; // in seconds
    float frameRate = 0;                 // 0 when it is not known
    std::optional<zorvan::Date> date = {};
};

/// What is known of a file.
struct PictureFacts {
    std::optional<std::string> type; // identifier: by the bytes, else by the name
    std::optional<zorvan::CGSize> size;
    std::int64_t orientation = 1;
    std::optional<zorvan::CGSize> uprightSize;
    std::optional<MovieFacts> movie;
    std::string error; // why it is unreadable; empty when it is not
};

/// A picture or movie file that was opened.
class Picture {
public:
    /// Reads the head of the file. What is no regular file is not opened at all: reading from a
    /// pipe would wait for ever.
    explicit Picture(const zorvan::URL& url);

    const PictureFacts& facts() const { return facts_; }

    /// The picture upright, or one of a movie, its longer side no longer than asked for. Empty when
    /// it is unreadable, which the facts then say.
    zorvan::CGImage::Pointer thumbnail(std::int64_t maximumSize);

private:
    void readFacts();
    /// False when the file is no movie.
    bool readMovieFacts(const zorvan::URL& url);
    zorvan::CGImage::Pointer movieThumbnail(std::int64_t maximumSize);

    PictureFacts facts_;
    std::shared_ptr<zorvan::CGImageSource> source_;
    std::shared_ptr<const zorvan::AVAsset> movie_;
};
