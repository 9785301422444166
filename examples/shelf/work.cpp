#include "work.h"

#include "displayText.h"

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/URL.h>
#include <zorvan/media/ImageKeys.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>

using namespace zorvan;

namespace {

// Enough to see whether a picture decodes to its end.
constexpr std::int64_t smallestThumbnail = 32;

/// Lets the threads through in the order of the files.
class Turnstile {
public:
    template <class Body>
    void pass(std::size_t position, Body body) {
        std::unique_lock lock(mutex_);
        isNext_.wait(lock, [&] { return next_ == position; });
        body();
        ++next_;
        isNext_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable isNext_;
    std::size_t next_ = 0;
};

class Work {
public:
    Work(const std::vector<ListedFile>& files, const Options& options, ContactSheet* sheet,
         ProgressBar& progress)
        : files_(files), options_(options), sheet_(sheet), progress_(progress) {
        result_.facts.resize(files.size());
    }

    WorkResult run() {
        const std::size_t processors = std::max(1u, std::thread::hardware_concurrency());
        const std::size_t count = std::min(processors, files_.size());
        {
            std::vector<std::jthread> helpers;
            for (std::size_t i = 1; i < count; ++i)
                helpers.emplace_back([this] { takeFiles(); });
            takeFiles();
        }
        return std::move(result_);
    }

private:
    void takeFiles() {
        for (std::size_t i = nextFile_++; i < files_.size(); i = nextFile_++) {
            std::optional<Data> copy;
            try {
                copy = lookAt(i);
            } catch (const std::bad_alloc&) {
                result_.facts[i].error = "there is not enough memory for it";
            } catch (const std::exception& problem) {
                result_.facts[i].error = problem.what();
            }
            turnstile_.pass(i, [&] { keep(i, copy); });
            progress_.step();
        }
    }

    /// Gives the bytes of the smaller copy, when one is wanted and can be made.
    std::optional<Data> lookAt(std::size_t i) {
        Picture picture(files_[i].url);
        std::optional<Data> copy;
        if (sheet_)
            sheet_->fill(i, files_[i].name, picture.facts(), picture.thumbnail(options_.cell));
        if (options_.exportFolder) {
            if (const auto image = picture.thumbnail(options_.exportSize))
                copy = encoded(*image);
        } else if (!sheet_ && !options_.quick) {
            picture.thumbnail(smallestThumbnail);
        }
        result_.facts[i] = picture.facts();
        return copy;
    }

    std::optional<Data> encoded(const CGImage& image) const {
        const ImageExportFormat format = options_.exportFormat;
        if (format == ImageExportFormat::jpg || format == ImageExportFormat::heic)
            return image.data(format,
                              {{std::string(kCGImageDestinationLossyCompressionQuality), 0.85}});
        return image.data(format);
    }

    void keep(std::size_t i, const std::optional<Data>& copy) {
        if (!options_.exportFolder || !result_.facts[i].error.empty())
            return;
        const URL wanted = URL({.fileURLWithPath = *options_.exportFolder})
                               .appendingPathComponent(lastPathTitle(files_[i].url))
                               .appendingPathExtension(options_.exportFormat.pathExtension());
        try {
            if (!copy)
                throw std::runtime_error("the copy cannot be encoded");
            NSFileManager::defaultManager()->createAvailableFile(wanted, *copy);
            ++result_.exported;
        } catch (const std::system_error& problem) {
            notKept(wanted, problem.code().message());
        } catch (const std::exception& problem) {
            notKept(wanted, problem.what());
        }
    }

    void notKept(const URL& wanted, const std::string& why) {
        result_.problems.push_back(forDisplay(wanted.path()) + ": " + why);
    }

    const std::vector<ListedFile>& files_;
    const Options& options_;
    ContactSheet* const sheet_;
    ProgressBar& progress_;
    std::atomic<std::size_t> nextFile_{0};
    Turnstile turnstile_;
    WorkResult result_;
};

} // namespace

WorkResult work(const std::vector<ListedFile>& files, const Options& options, ContactSheet* sheet,
                ProgressBar& progress) {
    return Work(files, options, sheet, progress).run();
}
