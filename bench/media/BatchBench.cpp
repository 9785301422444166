#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/ImageThumbailer.h>

#include <atomic>
#include <cstdio>
#include <sys/resource.h>
#include <thread>

/// Makes upright JPEGs of at most 1,600 pixels a side in FOLDER, on two threads:
///
///     bench-batch-export FOLDER PICTURE...
///
/// and says what memory it needed at most, in KB. A program of its own, so that it is measured as
/// the peers are.
int main(int argumentCount, char** arguments) {
    using namespace zorvan;
    if (argumentCount < 3)
        return 0; // scripts/batch-bench.sh runs it with pictures
    const URL folder({.fileURLWithPath = arguments[1]});
    std::atomic<int> next = 2, failures = 0;
    const auto isExported = [&](const URL& picture) {
        const ImageThumbailer thumbnailer{.maximumPixelSize = 1600};
        const CGImage::Pointer small = thumbnailer.thumbnail(picture);
        const URL file = folder.appendingPathComponent(picture.lastPathComponent());
        const auto destination =
            CGImageDestination::create(file, ImageExportFormat::jpg.cgType(), 1);
        if (!small || !destination)
            return false;
        destination->addImage(small);
        return destination->finalize();
    };
    const auto work = [&] {
        for (int i = next++; i < argumentCount; i = next++)
            if (!isExported(URL({.fileURLWithPath = arguments[i]})))
                ++failures;
    };
    std::thread other(work);
    work();
    other.join();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return failures == 0 ? 0 : 1;
}
