#include <zorvan/hosts/internal/SplitWidget.h>

#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QKeyEvent>
#include <QSplitterHandle>
#include <algorithm>

namespace zorvan::internal {

namespace {

/// A divider that the keyboard reaches too.
class Handle : public QSplitterHandle {
public:
    Handle(Qt::Orientation orientation, QSplitter* parent) : QSplitterHandle(orientation, parent) {
        setFocusPolicy(Qt::TabFocus);
        setAccessibleName(QSplitter::tr("Divider"));
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        constexpr int step = 10;
        const bool isAcross = orientation() == Qt::Horizontal;
        // A thin handle reaches over both sides by its margins.
        const int position =
            isAcross ? x() + contentsMargins().left() : y() + contentsMargins().top();
        if (event->key() == (isAcross ? Qt::Key_Left : Qt::Key_Up))
            moveSplitter(position - step);
        else if (event->key() == (isAcross ? Qt::Key_Right : Qt::Key_Down))
            moveSplitter(position + step);
        else
            QSplitterHandle::keyPressEvent(event);
    }
};

} // namespace

SplitWidget::SplitWidget(const std::shared_ptr<NSSplitView>& split, QWidget* parent)
    : HostedWidget(split, parent) {
    setHandleWidth(wholeLength(split->dividerThickness()));
    follow();
    subviewsDidChange();
    connect(this, &QSplitter::splitterMoved, this, [this](int, int index) noexcept {
        const EventInProgress inProgress;
        dividerMoved(index);
    });
}

QSplitterHandle* SplitWidget::createHandle() { return new Handle(orientation(), this); }

void SplitWidget::subviewsDidChange() {
    const auto& views = view_->subviews();
    letGoOfAllBut(*this, views);
    for (std::size_t i = 0; i < views.size(); ++i) {
        const int place = static_cast<int>(i);
        QWidget* part = widgetOf(*views[i], *this);
        if (!part)
            part = makeWidget(views[i], this);
        if (indexOf(part) != place)
            insertWidget(place, part);
        setStretchFactor(place, i + 1 == views.size() ? 1 : 0);
    }
    followDividers();
}

void SplitWidget::frameDidChange() {
    HostedWidget::frameDidChange();
    followDividers();
}

void SplitWidget::followDividers() {
    setOrientation(view_->isVertical() ? Qt::Horizontal : Qt::Vertical);
    view_->layoutSubtreeIfNeeded();
    QList<int> lengths;
    double start = 0;
    for (std::int64_t i = 0; i < view_->numberOfDividers(); ++i) {
        const double position = view_->position(i).value_or(0);
        lengths.append(wholeLength(position - start));
        start = position + view_->dividerThickness();
    }
    const double whole = view_->isVertical() ? view_->bounds().width() : view_->bounds().height();
    lengths.append(wholeLength(whole - start));
    followLimits(lengths);
    if (lengths == sizes() || lengths.size() != count())
        return;
    isFollowing_ = true;
    setSizes(lengths);
    isFollowing_ = false;
}

/// Where there is no room for a least length, the part is as small as the view says.
void SplitWidget::followLimits(const QList<int>& lengths) {
    for (int i = 0; i < std::min(count(), static_cast<int>(lengths.size())); ++i) {
        const int least = std::min(wholeLength(view_->minimumLength(i)), lengths[i]);
        widget(i)->setMinimumSize(view_->isVertical() ? QSize(least, 0) : QSize(0, least));
        setCollapsible(i, view_->isCollapsible(i) || least == 0);
    }
}

void SplitWidget::dividerMoved(int index) {
    if (isFollowing_)
        return;
    double position = 0;
    for (int i = 0; i < index; ++i)
        position += sizes()[i] + (i > 0 ? handleWidth() : 0);
    view_->setPosition(position, index - 1);
    view_->layoutSubtreeIfNeeded();
}

void SplitWidget::resizeEvent(QResizeEvent* event) {
    followDividers();
    QSplitter::resizeEvent(event);
}

} // namespace zorvan::internal
