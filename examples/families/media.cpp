// A photo upright and small, drawn into a card.
// Link Zorvan::Media.

#include <zorvan/media.h>

#include <iostream>

using namespace zorvan;

int main() {
    const URL photo({.fileURLWithPath = "samples/orientation-6.jpg"});           // a turned camera
    const auto small = ImageThumbailer{.maximumPixelSize = 64}.thumbnail(photo); // decoded small
    if (!small)
        return 1;
    const auto card = CGImage::draw(80, 80, [&](CGContext& context) {
        context.setFillColor(CGColor::yellow);
        context.fill(CGRect(0, 0, 80, 80));
        context.draw(*small, small->size().centered(CGRect(0, 0, 80, 80)));
    });
    std::cout << CGImage::imageSize(photo)->roundIntDesc() << " to " << small->size().roundIntDesc()
              << '\n'
              << (card && card->data(ImageExportFormat::png) ? "a PNG" : "nothing") << '\n';
}
