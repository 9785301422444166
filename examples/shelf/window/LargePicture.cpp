#include "LargePicture.h"

#include "drawing.h"

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGraphicsContext.h>
#include <zorvan/text/EventKeyCode.h>

using namespace zorvan;

std::shared_ptr<LargePicture> LargePicture::create(Actions actions) {
    const auto view = std::make_shared<LargePicture>(Key{}, CGRect());
    view->actions_ = std::move(actions);
    view->setShowsFocusRing(false);
    view->setAccessibilityRole(NSAccessibilityRole::image);
    return view;
}

void LargePicture::show(const PictureFile::Pointer& file, const Thumbnails& thumbnails) {
    constexpr std::int64_t mostPixels = 3840;
    if (file == file_)
        return;
    if (request_)
        request_->cancel();
    request_ = nullptr;
    file_ = file;
    image_ = file ? thumbnails.loaded(file) : nullptr;
    setAccessibilityLabel(file ? file->title : "");
    setNeedsDisplay(true);
    if (!file)
        return;
    const auto loader = Thumbnails::loader(file, mostPixels);
    const auto self = std::static_pointer_cast<LargePicture>(shared_from_this());
    request_ = loader->request([loader, weak = std::weak_ptr(self), file] {
        if (const auto view = weak.lock(); view && view->file_ == file)
            view->setImage(loader->value().value_or(nullptr));
    });
}

void LargePicture::setImage(const Thumbnails::Image& image) {
    image_ = image;
    request_ = nullptr;
    setNeedsDisplay(true);
}

void LargePicture::draw(Canvas& canvas) const {
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        constexpr NSColor ground({.white = 0.11, .alpha = 1});
        fill(bounds(), ground);
        if (!file_)
            return;
        drawThumbnail(image_, request_ != nullptr, bounds().shrunkBy({.dx = 12, .dy = 12}));
        if (!image_ && !request_)
            drawLine(file_->title + " cannot be shown",
                     {12, bounds().midY() - 48, bounds().width() - 24, 20}, NSColor::lightGray,
                     TextAlignment::center);
    });
}

void LargePicture::keyDown(const NSEvent& with) {
    const EventKeyCode key(with.keyCode);
    if (with.modifierFlags != NSEvent::ModifierFlags())
        NSView::keyDown(with);
    else if (key == EventKeyCode::rightArrow || key == EventKeyCode::downArrow ||
             key == EventKeyCode::space)
        actions_.step(1);
    else if (key == EventKeyCode::leftArrow || key == EventKeyCode::upArrow)
        actions_.step(-1);
    else if (key == EventKeyCode::escape)
        actions_.close();
    else
        NSView::keyDown(with);
}

void LargePicture::mouseDown(const NSEvent& with) {
    if (with.clickCount == 2)
        actions_.close();
}
