#include <zorvan/media/CGImage.h>

#include <utility>

namespace zorvan {

CGImage::Pointer CGImage::create(Bitmap bitmap) {
    return create(std::make_shared<const Bitmap>(std::move(bitmap)));
}

CGImage::Pointer CGImage::create(std::shared_ptr<const Bitmap> bitmap) {
    return std::make_shared<const CGImage>(Key{}, std::move(bitmap));
}

CGSize CGImage::size() const noexcept {
    return {static_cast<double>(width()), static_cast<double>(height())};
}

CGRect CGImage::rect() const noexcept { return {CGPoint(), size()}; }

} // namespace zorvan
