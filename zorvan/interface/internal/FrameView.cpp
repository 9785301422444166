#include <zorvan/interface/internal/FrameView.h>

#include <zorvan/interface/NSWindow.h>
#include <zorvan/interface/internal/drawing.h>

namespace zorvan {

void FrameView::setTitle(std::string title) {
    title_ = std::move(title);
    contentDidChange();
}

void FrameView::contentDidChange() {
    if (contentChanged_)
        contentChanged_();
}

void FrameView::draw(Canvas& canvas) const {
    const Drawing drawing(canvas);
    const CGRect bar(0, bounds().height() - NSWindow::titleBarHeight, bounds().width(), NSWindow::titleBarHeight);
    fillRect(bar, Palette::bar);
    const double side = NSWindow::titleBarHeight;
    drawLabel(title_, {side, bar.minY(), bar.width() - 2 * side, bar.height()}, LabelStyle::bold,
              Palette::label);
    const CGPoint middle(bar.maxX() - 20, bar.minY() + NSWindow::titleBarHeight / 2);
    constexpr double arm = 4;
    for (const double slope : {1.0, -1.0})
        drawLine(
            {{middle.x - arm, middle.y - arm * slope}, {middle.x + arm, middle.y + arm * slope}},
            1.4, Palette::faintLabel);
}

} // namespace zorvan
