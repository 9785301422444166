#include <zorvan/hosts/internal/SplitWidget.h>

#include <zorvan/hosts/internal/ViewMirror.h>
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

class SplitWidget::Mirror : public ViewMirror {
public:
    Mirror(const std::shared_ptr<NSSplitView>& split, SplitWidget& widget)
        : ViewMirror(split, widget) {}

    void subviewsDidChange() override {
        if (auto* const own = static_cast<SplitWidget*>(widget()))
            own->followSubviews();
    }
    void needsDisplay(const CGRect&) override {
        if (auto* const own = static_cast<SplitWidget*>(widget()))
            own->followDividers();
    }
    void frameDidChange() override {
        ViewMirror::frameDidChange();
        needsDisplay(view()->bounds());
    }

protected:
    void followAll() override {
        ViewMirror::followAll();
        subviewsDidChange();
    }
};

SplitWidget::SplitWidget(const std::shared_ptr<NSSplitView>& split, QWidget* parent)
    : QSplitter(parent), split_(split) {
    setHandleWidth(wholeLength(split->dividerThickness()));
    ViewMirror::attach(std::make_shared<Mirror>(split, *this));
    connect(this, &QSplitter::splitterMoved, this,
            [this](int, int index) noexcept { dividerMoved(index); });
}

bool SplitWidget::event(QEvent* event) noexcept { return QSplitter::event(event); }

QSplitterHandle* SplitWidget::createHandle() { return new Handle(orientation(), this); }

void SplitWidget::followSubviews() {
    const auto& views = split_->subviews();
    for (int i = count() - 1; i >= 0; --i) {
        QWidget* const part = widget(i);
        if (std::find(views.begin(), views.end(), viewOf(part)) != views.end())
            continue;
        part->hide();
        part->setParent(nullptr);
        part->deleteLater();
    }
    for (std::size_t i = 0; i < views.size(); ++i) {
        QWidget* part = nullptr;
        for (int at = 0; at < count() && !part; ++at)
            part = viewOf(widget(at)) == views[i] ? widget(at) : nullptr;
        const int place = static_cast<int>(i);
        if (!part)
            part = makeWidget(views[i], this);
        if (indexOf(part) != place)
            insertWidget(place, part);
        setStretchFactor(place, i + 1 == views.size() ? 1 : 0);
    }
    followDividers();
}

void SplitWidget::followDividers() {
    setOrientation(split_->isVertical() ? Qt::Horizontal : Qt::Vertical);
    followLimits();
    split_->layoutSubtreeIfNeeded();
    QList<int> lengths;
    double start = 0;
    for (std::int64_t i = 0; i < split_->numberOfDividers(); ++i) {
        const double position = split_->position(i).value_or(0);
        lengths.append(wholeLength(position - start));
        start = position + split_->dividerThickness();
    }
    const double whole =
        split_->isVertical() ? split_->bounds().width() : split_->bounds().height();
    lengths.append(wholeLength(whole - start));
    if (lengths == sizes() || lengths.size() != count())
        return;
    isFollowing_ = true;
    setSizes(lengths);
    isFollowing_ = false;
}

void SplitWidget::followLimits() {
    for (int i = 0; i < count(); ++i) {
        const int least = wholeLength(split_->minimumLength(i));
        widget(i)->setMinimumSize(split_->isVertical() ? QSize(least, 0) : QSize(0, least));
        setCollapsible(i, split_->isCollapsible(i) || least == 0);
    }
}

void SplitWidget::dividerMoved(int index) {
    if (isFollowing_)
        return;
    double position = 0;
    for (int i = 0; i < index; ++i)
        position += sizes()[i] + (i > 0 ? handleWidth() : 0);
    split_->setPosition(position, index - 1);
    split_->layoutSubtreeIfNeeded();
}

void SplitWidget::resizeEvent(QResizeEvent* event) {
    followDividers();
    QSplitter::resizeEvent(event);
}

} // namespace zorvan::internal
