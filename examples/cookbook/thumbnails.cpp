// Thumbnails while scrolling
//
// Each cell asks for its picture when it comes into sight and gives the claim up when it goes; a
// picture that nobody waits for any more is not decoded.
//
// Link Zorvan::Media, Zorvan::Observation.

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageThumbailer.h>
#include <zorvan/observation/ValueLoader.h>
#include <zorvan/platform/dispatch/MainQueue.h>

#include <iostream>

using namespace zorvan;

using Thumbnail = ValueLoader<CGImage::Pointer>;

int main() {
    const auto queue = NSOperationQueue::create();
    const auto thumbnail = [&](const char* path) {
        return Thumbnail::create(queue, [url = URL({.fileURLWithPath = path})] {
            return std::optional(ImageThumbailer{.maximumPixelSize = 64}.thumbnail(url));
        });
    };
    const auto seen = thumbnail("samples/travel/harbour.jpg");
    const auto scrolledAway = thumbnail("samples/travel/village.jpg");

    scrolledAway->request([] { std::cout << "never\n"; })->cancel();
    const auto request = seen->request([&] {
        if (const CGImage::Pointer& picture = *seen->value()) // empty for a broken file
            std::cout << picture->width() << " x " << picture->height() << '\n';
        MainQueue::stop();
    });
    MainQueue::run();
}
