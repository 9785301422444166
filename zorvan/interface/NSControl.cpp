#include <zorvan/interface/NSControl.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/media/NSGraphicsContext.h>

namespace zorvan {

void NSControl::setCell(std::shared_ptr<NSCell> cell) {
    const auto self = std::static_pointer_cast<NSControl>(shared_from_this());
    const std::shared_ptr<NSControl> other = cell ? cell->controlView() : nullptr;
    if (other && other != self)
        other->setCell(nullptr);
    if (cell_)
        cell_->controlView_.reset();
    cell_ = std::move(cell);
    if (cell_)
        cell_->controlView_ = self;
    setNeedsDisplay(true);
    setNeedsLayout(true);
}

void NSControl::setEnabled(bool enabled) {
    if (enabled == isEnabled_)
        return;
    isEnabled_ = enabled;
    setNeedsDisplay(true);
}

bool NSControl::sendAction() {
    return cell_ && cell_->action() && sendAction(*cell_->action(), cell_->target());
}

bool NSControl::sendAction(const Selector& action, const std::weak_ptr<void>& to) {
    return NSApplication::shared().sendAction(action, to, shared_from_this());
}

CGSize NSControl::intrinsicContentSize() const {
    return cell_ ? cell_->cellSize() : NSView::intrinsicContentSize();
}

void NSControl::draw(Canvas& canvas) const {
    if (const std::shared_ptr<NSCell> own = cell_)
        NSGraphicsContext::use(NSGraphicsContext::create(canvas),
                               [&] { own->draw(bounds(), *this); });
}

} // namespace zorvan
