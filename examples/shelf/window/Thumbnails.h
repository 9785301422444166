#pragma once

#include "PictureFile.h"

#include <zorvan/media/NSImage.h>
#include <zorvan/observation/ValueLoader.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>

/// Thumbnails of pictures: each is made in the background when it is first asked for, and kept
/// until those asked for later leave no room. Main thread only.
class Thumbnails : public std::enable_shared_from_this<Thumbnails> {
public:
    using Image = zorvan::NSImage::Pointer;
    using Loader = zorvan::ValueLoader<Image>;
    using Request = Loader::Request;
    /// What is given for a picture that cannot be decoded is null.
    using Completion = std::function<void(const Image&)>;

    static std::shared_ptr<Thumbnails> create(std::int64_t mostBytes);

    /// In pixels, of the longer side; 256 unless set. Another size makes all anew.
    void setSide(std::int64_t side);
    /// Calls back at once when the thumbnail is there, and gives null then; else later, unless the
    /// request is cancelled.
    std::shared_ptr<Request> request(const PictureFile::Pointer& file, Completion completion);
    /// Null unless it is there.
    Image loaded(const PictureFile::Pointer& file) const;
    bool isLoading() const;
    /// What the thumbnails that are kept take.
    std::int64_t byteCount() const { return byteCount_; }

    /// Decodes in the background; the longer side has that many pixels at most.
    static std::shared_ptr<Loader> loader(const PictureFile::Pointer& file, std::int64_t side,
                                          std::function<void(const Image&)> made = {});

private:
    struct Kept {
        std::shared_ptr<Loader> loader;
        std::int64_t byteCount = 0; // once it is loaded
        std::list<PictureFile::Pointer>::iterator place;
    };

    explicit Thumbnails(std::int64_t mostBytes) : mostBytes_(mostBytes) {}
    Kept& kept(const PictureFile::Pointer& file);
    void count(const PictureFile::Pointer& file, std::int64_t side, std::int64_t byteCount);

    const std::int64_t mostBytes_;
    std::int64_t side_ = 256;
    std::int64_t byteCount_ = 0;
    std::unordered_map<PictureFile::Pointer, Kept> kept_;
    std::list<PictureFile::Pointer> lastUsed_; // the last one first
};
