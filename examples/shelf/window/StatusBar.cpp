#include "StatusBar.h"

#include "drawing.h"

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>

using namespace zorvan;

std::shared_ptr<StatusBar> StatusBar::create(std::function<void()> cancel) {
    const auto bar = std::make_shared<StatusBar>(Key{}, CGRect());
    bar->setAccessibilityRole(NSAccessibilityRole::staticText);
    bar->setAccessibilityLabel("Status");
    bar->cancel_ =
        NSButton::create({.title = "Cancel", .action = Selector("cancel", std::move(cancel))});
    bar->cancel_->setHidden(true);
    bar->addSubview(bar->cancel_);
    return bar;
}

void StatusBar::setText(const std::string& text) {
    if (text == text_)
        return;
    text_ = text;
    setAccessibilityValue(text);
    setNeedsDisplay(true);
}

void StatusBar::setProgress(std::optional<double> progress) {
    progress_ = progress;
    cancel_->setHidden(!progress);
    setNeedsDisplay(true);
}

void StatusBar::draw(Canvas& canvas) const {
    constexpr double margin = 12, barWidth = 160, barHeight = 4;
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
        CGRect text = bounds().shrunkBy({.dx = margin, .dy = 0});
        if (progress_) {
            const double right = cancel_->frame().minX() - margin;
            const CGRect bar(right - barWidth, bounds().midY() - barHeight / 2, barWidth,
                             barHeight);
            fill(bar, faintColor().withAlphaComponent(0.3));
            fill({bar.origin, CGSize(barWidth * *progress_, barHeight)}, inkColor());
            text.size.width = std::max(bar.minX() - 2 * margin, 0.0);
        }
        drawLine(text_, text, faintColor());
    });
}

void StatusBar::layout() {
    const CGSize wanted = cancel_->fittingSize();
    cancel_->setFrame({bounds().width() - wanted.width - 8, (height - wanted.height) / 2,
                       wanted.width, wanted.height});
}

std::shared_ptr<Stage> Stage::create(const std::shared_ptr<StatusBar>& statusBar) {
    const auto stage = std::make_shared<Stage>(Key{}, CGRect());
    stage->statusBar_ = statusBar;
    stage->addSubview(statusBar);
    return stage;
}

void Stage::show(const std::shared_ptr<NSView>& view) {
    if (view == shown_)
        return;
    if (shown_)
        shown_->removeFromSuperview();
    shown_ = view;
    addSubview(view);
    layout();
}

void Stage::layout() {
    const CGSize size = bounds().size;
    statusBar_->setFrame({0, 0, size.width, StatusBar::height});
    shown_->setFrame(
        {0, StatusBar::height, size.width, std::max(size.height - StatusBar::height, 0.0)});
}
