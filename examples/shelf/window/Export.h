#pragma once

#include "PictureFile.h"

#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/platform/foundation/URL.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Writes smaller copies of pictures into a folder, in the background; never over another file.
class Export : public std::enable_shared_from_this<Export> {
public:
    struct Settings {
        std::string folder;
        std::int64_t size; // most pixels on the longer side
        zorvan::ImageExportFormat format;
    };
    /// `didStep` is called on the main queue after each picture.
    static std::shared_ptr<Export> start(const std::vector<PictureFile::Pointer>& files,
                                         Settings settings,
                                         std::function<void(const Export&)> didStep);

    /// What is being written is still written; what waits is not.
    void cancel() { isCancelled_ = true; }
    bool isCancelled() const { return isCancelled_; }

    // On the main thread.

    std::size_t total() const { return total_; }
    std::size_t done() const { return done_; }
    std::size_t written() const { return written_; }
    /// Why the first one that failed did so; empty when none has.
    const std::string& problem() const { return problem_; }
    bool isOver() const { return done_ == total_; }

private:
    Export(std::size_t total, Settings settings, std::function<void(const Export&)> didStep)
        : settings_(std::move(settings)), didStep_(std::move(didStep)), total_(total) {}
    /// Empty when it has been written.
    std::string write(const PictureFile& file) const;
    void step(bool isWritten, const std::string& problem);

    const Settings settings_;
    const std::function<void(const Export&)> didStep_;
    std::atomic<bool> isCancelled_{false};
    const std::size_t total_;
    std::size_t done_ = 0, written_ = 0;
    std::string problem_;
};
