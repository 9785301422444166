#include "work.h"

#include "copies.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
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
                copy = encodedCopy(*image, options_.exportFormat);
        } else if (!sheet_ && !options_.quick) {
            picture.thumbnail(smallestThumbnail);
        }
        result_.facts[i] = picture.facts();
        return copy;
    }

    void keep(std::size_t i, const std::optional<Data>& copy) {
        if (!options_.exportFolder || !result_.facts[i].error.empty())
            return;
        std::string problem =
            writeCopy(files_[i].url, *options_.exportFolder, options_.exportFormat, copy);
        if (problem.empty())
            ++result_.exported;
        else
            result_.problems.push_back(std::move(problem));
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
