#include <zorvan/hosts/internal/ScrollWidget.h>

#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAbstractScrollArea>
#include <QEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QVBoxLayout>

namespace zorvan::internal {

namespace {

/// Any document between scroll bars.
class DocumentArea : public QAbstractScrollArea, NSViewObserver {
public:
    DocumentArea(std::shared_ptr<NSClipView> clipView, QWidget* parent)
        : QAbstractScrollArea(parent), clipView_(std::move(clipView)),
          document_(clipView_->documentView()), shown_(makeWidget(document_, viewport())) {
        setFrameShape(NoFrame);
        for (QScrollBar* const bar : {horizontalScrollBar(), verticalScrollBar()})
            bar->setSingleStep(20);
        clipView_->addObserver(observer_);
        document_->addObserver(observer_);
        follow();
    }

protected:
    bool event(QEvent* event) noexcept override {
        if (event->type() == QEvent::LayoutDirectionChange)
            follow();
        return QAbstractScrollArea::event(event);
    }
    void resizeEvent(QResizeEvent*) override { follow(); }
    void scrollContentsBy(int, int) override {
        if (isFollowing_)
            return;
        const QScopedValueRollback guard(isFollowing_, true);
        const CGRect document = document_->frame();
        const double top = verticalScrollBar()->value();
        const double y = clipView_->isFlipped() ? document.minY() + top
                                                : document.maxY() - top - viewport()->height();
        clipView_->setBoundsOrigin({document.minX() + leftOf(horizontalScrollBar()->value()), y});
        place();
    }

private:
    void frameDidChange() override { follow(); }
    void boundsOriginDidChange(bool) override { follow(); }

    void follow() {
        if (isFollowing_)
            return;
        const QScopedValueRollback guard(isFollowing_, true);
        const QSize size = toQSize(document_->frame().size);
        const CGRect seen = clipView_->bounds(), document = document_->frame();
        const double top =
            clipView_->isFlipped() ? seen.minY() - document.minY() : document.maxY() - seen.maxY();
        // A document made as wide as the scroll view wants no bar for what the vertical one covers.
        const int across = size.width() <= width() ? size.width() : viewport()->width();
        const double left = seen.minX() - document.minX();
        fitBar(*horizontalScrollBar(), size.width(), across);
        moveBar(*horizontalScrollBar(), isRightToLeft() ? size.width() - across - left : left);
        fitBar(*verticalScrollBar(), size.height(), viewport()->height());
        moveBar(*verticalScrollBar(), top);
        shown_->resize(size);
        place();
    }

    void place() {
        shown_->move(-leftOf(horizontalScrollBar()->value()), -verticalScrollBar()->value());
    }

    /// What is out of sight to the left; where one reads from right to left the bar counts from
    /// there.
    int leftOf(int value) const {
        return isRightToLeft() ? horizontalScrollBar()->maximum() - value : value;
    }

    const std::shared_ptr<NSClipView> clipView_;
    const std::shared_ptr<NSView> document_;
    QWidget* const shown_;
    /// Until this goes.
    const std::shared_ptr<NSViewObserver> observer_{std::make_shared<char>(), this};
    bool isFollowing_ = false;
};

} // namespace

ScrollWidget::ScrollWidget(const std::shared_ptr<NSScrollView>& scrollView, QWidget* parent)
    : HostedWidget(scrollView, parent) {
    setLayout(new QVBoxLayout);
    layout()->setContentsMargins({});
    follow();
    scrollView->contentView()->addObserver(untilItGoes<NSViewObserver>(*this));
    subviewsDidChange();
}

QSize ScrollWidget::sizeHint() const { return toQSize(view_->fittingSize()); }

void ScrollWidget::subviewsDidChange() {
    const auto document = view_->documentView();
    const bool isThere = document && document->superview() == view_->contentView();
    if (isThere && document == document_)
        return;
    document_ = isThere ? document : nullptr;
    if (shown_)
        letGo(*std::exchange(shown_, nullptr));
    if (!document_)
        return;
    shown_ = makeItemWidget(document_, this);
    if (!shown_)
        shown_ = new DocumentArea(view_->contentView(), this);
    layout()->addWidget(shown_);
    setFocusProxy(shown_->focusPolicy() == Qt::NoFocus ? nullptr : shown_);
}

} // namespace zorvan::internal
