#include <zorvan/media/CIImage.h>

#include <zorvan/media/CIFilter.h>

#include <algorithm>
#include <utility>

namespace zorvan {

namespace {

std::shared_ptr<CIFilter> colorMatrix(double color, double alpha) {
    const std::shared_ptr<CIFilter> filter = CIFilter::create("CIColorMatrix");
    filter->setValue(CIVector{color, 0, 0, 0}, "inputRVector");
    filter->setValue(CIVector{0, color, 0, 0}, "inputGVector");
    filter->setValue(CIVector{0, 0, color, 0}, "inputBVector");
    filter->setValue(CIVector{0, 0, 0, alpha}, "inputAVector");
    filter->setValue(CIVector{0, 0, 0, 0}, "inputBiasVector");
    return filter;
}

} // namespace

CIImage::Pointer CIImage::create(const CGImage::Pointer& image) {
    if (!image)
        return nullptr;
    const auto made = std::make_shared<CIImage>(Key{});
    made->source_ = image;
    made->placement_ = CGAffineTransform(1, 0, 0, -1, 0, static_cast<double>(image->height()));
    made->extent_ = image->rect();
    return made;
}

CIImage::Pointer CIImage::create(const URL& contentsOf) {
    return create(CGImage::image(contentsOf));
}

std::shared_ptr<CIImage> CIImage::copy() const { return std::make_shared<CIImage>(*this); }

CIImage::Pointer CIImage::transformed(const CGAffineTransform& by) const {
    const std::shared_ptr<CIImage> made = copy();
    made->placement_ = placement_.concatenating(by);
    made->extent_ = extent_.applying(by);
    for (CGPath& crop : made->crops_)
        crop = crop.applying(by);
    return made;
}

CIImage::Pointer CIImage::cropped(const CGRect& to) const {
    const std::shared_ptr<CIImage> made = copy();
    made->extent_ = extent_.intersection(to);
    CGPath path;
    path.addRect(to);
    made->crops_.push_back(std::move(path));
    return made;
}

CIImage::Pointer CIImage::changingPixels(PixelChange change) const {
    const std::shared_ptr<CIImage> made = copy();
    made->changes_.push_back(std::move(change));
    return made;
}

CIImage::Pointer CIImage::centered(const CGRect& in) const {
    return transformed(CGAffineTransform(
        {.translationX = in.x() - extent_.x() + (in.width() - extent_.width()) * 0.5,
         .y = in.y() - extent_.y() + (in.height() - extent_.height()) * 0.5}));
}

CIImage::Pointer CIImage::aspectFill(const CGRect& in) const {
    return transformed(CGAffineTransform(
        {.scale = std::max(in.width() / extent_.width(), in.height() / extent_.height())}));
}

CIImage::Pointer CIImage::aspectFit(const CGRect& in) const {
    return transformed(CGAffineTransform(
        {.scale = std::min(in.width() / extent_.width(), in.height() / extent_.height())}));
}

CIImage::Pointer CIImage::withAlphaBlending(double) const {
    return applying({colorMatrix(1, 0.5)});
}

CIImage::Pointer CIImage::withColorBlending(double) const {
    return applying({colorMatrix(0.5, 1)});
}

CIImage::Pointer CIImage::applying(const std::vector<std::shared_ptr<CIFilter>>& filters) const {
    Pointer current = shared_from_this();
    for (const std::shared_ptr<CIFilter>& filter : filters) {
        if (!filter)
            continue;
        filter->setValue(current, kCIInputImageKey);
        const CIFilter::Value output = filter->value(kCIOutputImageKey);
        if (const auto* image = std::get_if<Pointer>(&output); image && *image)
            current = *image;
    }
    return current;
}

CIImage::Pointer CIImage::autoAdjusted(const PropertyList::Dictionary& options) const {
    return applying(autoAdjustmentFilters(options));
}

} // namespace zorvan
