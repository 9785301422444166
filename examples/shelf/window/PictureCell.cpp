#include "PictureCell.h"

#include "drawing.h"

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGraphicsContext.h>

using namespace zorvan;

std::shared_ptr<PictureCell> PictureCell::create(PictureFile::Pointer file, Style style,
                                                 Thumbnails& thumbnails, IsSelected isSelected) {
    const auto cell = std::make_shared<PictureCell>(Key{}, CGRect());
    cell->file_ = std::move(file);
    cell->style_ = style;
    cell->isSelected_ = std::move(isSelected);
    cell->setAccessibilityRole(NSAccessibilityRole::image);
    cell->setAccessibilityLabel(cell->file_->title);
    cell->request_ =
        thumbnails.request(cell->file_, [weak = std::weak_ptr(cell)](const auto& image) {
            const auto waiting = weak.lock();
            if (!waiting)
                return;
            waiting->thumbnail_ = image;
            waiting->request_ = nullptr;
            waiting->setNeedsDisplay(true);
        });
    return cell;
}

PictureCell::~PictureCell() {
    if (request_)
        request_->cancel();
}

void PictureCell::draw(Canvas& canvas) const {
    constexpr double padding = 6, titleHeight = 18;
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        CGRect box = bounds().shrunkBy({.dx = padding, .dy = padding});
        CGRect title = box;
        if (style_ == Style::tile) {
            title.size.height = titleHeight;
            box = {box.minX(), box.minY() + titleHeight + padding, box.width(),
                   box.height() - titleHeight - padding};
        } else {
            box = bounds().shrunkBy({.dx = 2, .dy = 2});
            box.size.width = box.height() * 1.3;
            title = {box.maxX() + padding, title.minY(), title.maxX() - box.maxX() - padding,
                     title.height()};
        }
        drawThumbnail(thumbnail_, request_ != nullptr, box);
        drawLine(file_->title, title, isSelected_(file_) ? NSColor::white : inkColor(),
                 style_ == Style::tile ? TextAlignment::center : TextAlignment::left);
    });
}
