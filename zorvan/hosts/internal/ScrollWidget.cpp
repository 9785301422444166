#include <zorvan/hosts/internal/ScrollWidget.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/itemWidgets.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace zorvan::internal {

namespace {

/// Any document between scroll bars.
class DocumentArea : public QAbstractScrollArea {
public:
    DocumentArea(std::shared_ptr<NSClipView> clipView, QWidget* parent)
        : QAbstractScrollArea(parent), clipView_(std::move(clipView)),
          document_(clipView_->documentView()), shown_(makeWidget(document_, viewport())),
          follower_(std::make_shared<Follower>(*this)) {
        setFrameShape(NoFrame);
        for (QScrollBar* const bar : {horizontalScrollBar(), verticalScrollBar()})
            bar->setSingleStep(20);
        clipView_->addObserver(follower_);
        document_->addObserver(follower_);
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
    struct Follower : NSViewObserver {
        explicit Follower(DocumentArea& area) : shown(area) {}
        void frameDidChange() override { shown.follow(); }
        void boundsOriginDidChange(bool) override { shown.follow(); }
        DocumentArea& shown; // which keeps it alive
    };

    void follow() {
        if (isFollowing_)
            return;
        const QScopedValueRollback guard(isFollowing_, true);
        const QSize size = toQSize(document_->frame().size);
        const auto fit = [](QScrollBar& bar, int document, int seen, double value) {
            bar.setPageStep(seen);
            bar.setRange(0, std::max(document - seen, 0));
            bar.setValue(static_cast<int>(
                std::clamp<double>(std::round(value), bar.minimum(), bar.maximum())));
        };
        const CGRect seen = clipView_->bounds(), document = document_->frame();
        const double top =
            clipView_->isFlipped() ? seen.minY() - document.minY() : document.maxY() - seen.maxY();
        // A document made as wide as the scroll view wants no bar for what the vertical one covers.
        const int across = size.width() <= width() ? size.width() : viewport()->width();
        const double left = seen.minX() - document.minX();
        fit(*horizontalScrollBar(), size.width(), across,
            isRightToLeft() ? size.width() - across - left : left);
        fit(*verticalScrollBar(), size.height(), viewport()->height(), top);
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
    const std::shared_ptr<Follower> follower_;
    bool isFollowing_ = false;
};

class ScrollWidget : public QWidget {
public:
    ScrollWidget(const std::shared_ptr<NSScrollView>& scrollView, QWidget* parent)
        : QWidget(parent), scrollView_(scrollView), follower_(std::make_shared<Follower>(*this)) {
        setLayout(new QVBoxLayout);
        layout()->setContentsMargins({});
        ViewMirror::attach(std::make_shared<ViewMirror>(scrollView, *this));
        scrollView->contentView()->addObserver(follower_);
        followDocument();
    }

    QSize sizeHint() const override { return toQSize(scrollView_->fittingSize()); }

private:
    struct Follower : NSViewObserver {
        explicit Follower(ScrollWidget& scroller) : shown(scroller) {}
        void subviewsDidChange() override { shown.followDocument(); }
        ScrollWidget& shown; // which keeps it alive
    };

    void followDocument() {
        const auto document = scrollView_->documentView();
        const bool isThere = document && document->superview() == scrollView_->contentView();
        if (isThere && document == document_)
            return;
        document_ = isThere ? document : nullptr;
        if (shown_) {
            // It may be in the middle of an event that exchanged its document.
            shown_->hide();
            shown_->setParent(nullptr);
            shown_->deleteLater();
            shown_ = nullptr;
        }
        if (!document_)
            return;
        shown_ = makeItemWidget(document_, this);
        if (!shown_)
            shown_ = new DocumentArea(scrollView_->contentView(), this);
        layout()->addWidget(shown_);
        setFocusProxy(shown_->focusPolicy() == Qt::NoFocus ? nullptr : shown_);
    }

    const std::shared_ptr<NSScrollView> scrollView_;
    const std::shared_ptr<Follower> follower_;
    std::shared_ptr<NSView> document_;
    QPointer<QWidget> shown_;
};

} // namespace

QWidget* makeScrollWidget(const std::shared_ptr<NSScrollView>& scrollView, QWidget* parent) {
    return new ScrollWidget(scrollView, parent);
}

} // namespace zorvan::internal
