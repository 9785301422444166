#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/ImageThumbailer.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <atomic>
#include <sys/resource.h>

/// Makes upright JPEGs of at most 1,600 pixels a side, on two threads, of PICTURE, COUNT times:
///
///     batch PICTURE FOLDER COUNT
///
/// and says what memory it needed at most. A program of its own, so that it is measured as the
/// peers are.
int main(int argumentCount, char** arguments) {
    using namespace zorvan;
    if (argumentCount != 4)
        return 0; // scripts/batch-bench.sh runs it with a picture
    const URL picture({.fileURLWithPath = arguments[1]});
    const std::string folder = arguments[2];
    const int count = std::atoi(arguments[3]);
    std::atomic<int> next = 0, failures = 0;
    const auto work = [&] {
        const ImageThumbailer thumbnailer{.maximumPixelSize = 1600};
        for (int i = next++; i < count; i = next++) {
            const CGImage::Pointer small = thumbnailer.thumbnail(picture);
            const URL file({.fileURLWithPath = folder + "/" + std::to_string(i % 100) + ".jpg"});
            const auto destination =
                CGImageDestination::create(file, ImageExportFormat::jpg.cgType(), 1);
            if (!small || !destination)
                ++failures;
            else
                destination->addImage(small);
            if (small && destination && !destination->finalize())
                ++failures;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return failures == 0 ? 0 : 1;
}
