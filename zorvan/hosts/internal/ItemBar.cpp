#include <zorvan/hosts/internal/ItemBar.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QResizeEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr int margin = 6, gap = 6;

/// What stands in a bar: so wide, or as wide as it can be.
struct BarLength {
    double width = 0;
    bool isFlexible = false;
    /// Where it has to begin when there is room; below 0 anywhere.
    double wantedLeft = -1;
};

/// Where each begins and how wide it is, in a bar of that width.
struct BarPlace {
    double left = 0;
    double width = 0;
};

/// One after the other with a gap between them, inside margins. Flexible ones share what is left.
std::vector<BarPlace> spreadItems(const std::vector<BarLength>& items, double width) {
    std::vector<BarPlace> places(items.size());
    // From one wanted place to the next, so that what stands before one fills the room up to it.
    std::size_t first = 0;
    double left = items.empty() ? margin : std::max<double>(margin, items.front().wantedLeft);
    while (first < items.size()) {
        std::size_t end = first + 1;
        while (end < items.size() && items[end].wantedLeft < 0)
            ++end;
        const bool isLast = end == items.size();
        const double right = isLast ? width - margin : items[end].wantedLeft - gap;
        double fixed = gap * static_cast<double>(end - first - 1);
        double flexibleCount = 0;
        for (std::size_t i = first; i < end; ++i) {
            fixed += items[i].isFlexible ? 0 : items[i].width;
            flexibleCount += items[i].isFlexible ? 1 : 0;
        }
        const double share =
            flexibleCount > 0 ? std::max(right - left - fixed, 0.0) / flexibleCount : 0;
        for (std::size_t i = first; i < end; ++i) {
            places[i] = {left, items[i].isFlexible ? share : items[i].width};
            left += places[i].width + gap;
        }
        if (!isLast)
            left = std::max(left, items[end].wantedLeft);
        first = end;
    }
    return places;
}

/// An item's widget, with its label below.
class Cell : public QWidget {
public:
    Cell(const BarItem& item, QWidget* parent) : QWidget(parent), layout_(new QVBoxLayout(this)) {
        layout_->setContentsMargins(0, 0, 0, 0);
        layout_->setSpacing(1);
        // What is hidden keeps its place, so that the others do not move.
        widget_ = item.make ? item.make(this) : nullptr;
        if (widget_) {
            QSizePolicy policy = widget_->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            widget_->setSizePolicy(policy);
            layout_->addWidget(widget_, 0, Qt::AlignCenter);
        }
        layout_->addWidget(&label_, 0, Qt::AlignCenter);
        QFont small = label_.font();
        small.setPointSizeF(small.pointSizeF() * 0.85);
        label_.setFont(small);
        label_.setTextFormat(Qt::PlainText);
        follow(item);
    }

    /// Whether it can go on with an item, which may have had nothing to show, or have lost it.
    bool canShow(const BarItem& item) const { return (widget_ != nullptr) == !!item.make; }

    void follow(const BarItem& item) {
        addToMenu_ = item.showsWidget ? nullptr : item.addToMenu;
        if (widget_ && item.showsWidget && widget_->maximumHeight() == 0) {
            widget_->setMinimumHeight(shortest_);
            widget_->setMaximumHeight(tallest_);
        }
        if (widget_ && item.update)
            item.update(*widget_);
        if (widget_ && !item.showsWidget && widget_->maximumHeight() > 0) {
            shortest_ = widget_->minimumHeight();
            tallest_ = widget_->maximumHeight();
            widget_->setFixedHeight(0);
        }
        label_.setText(item.label);
        label_.setEnabled(item.isEnabled);
        label_.setVisible(!item.label.isEmpty());
    }

protected:
    void mousePressEvent(QMouseEvent*) override {}
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && label_.isEnabled() &&
            label_.geometry().contains(event->position().toPoint()))
            pressLabel();
    }

private:
    /// Does what the widget does when it is pressed, or shows what stands in its place.
    void pressLabel() {
        const EventInProgress inProgress;
        auto* const tool = qobject_cast<QToolButton*>(widget_);
        if (tool && tool->menu())
            tool->showMenu();
        else if (auto* const button = qobject_cast<QAbstractButton*>(widget_))
            button->click();
        else if (addToMenu_)
            openMenu();
    }
    void openMenu() {
        auto* const menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        addToMenu_(*menu);
        menu->popup(label_.mapToGlobal(label_.rect().bottomLeft()));
    }

    QVBoxLayout* const layout_;
    QWidget* widget_;
    QLabel label_;
    /// Empty while the widget is shown.
    std::function<void(QMenu&)> addToMenu_;
    /// What the widget may be, while it is not shown.
    int shortest_ = 0, tallest_ = 0;
};

struct Place {
    BarItem item;
    Cell* cell = nullptr; // null for a space
};

} // namespace

class ItemBar::Row : public QWidget {
public:
    Row(Kind kind, QWidget* parent) : QWidget(parent), more_(new QToolButton(this)) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        more_->setText(QStringLiteral("»"));
        more_->setAccessibleName(QToolBar::tr("More tools"));
        more_->setToolTip(QToolBar::tr("More tools"));
        more_->setAutoRaise(true);
        more_->setFocusPolicy(Qt::TabFocus);
        if (kind == Kind::touchBar)
            more_->setPalette(QPalette(QColor(58, 58, 58))); // with light text
        setMenu(*more_, [this](QMenu& menu) {
            for (const Place& place : places_)
                if (place.cell && place.cell->isHidden() && place.item.addToMenu)
                    place.item.addToMenu(menu);
        });
        more_->hide();
    }

    void show(BarItems items) {
        std::vector<Place> before = std::exchange(places_, {});
        for (BarItem& item : items) {
            const auto known = std::find_if(before.begin(), before.end(), [&](const Place& place) {
                return place.cell && place.item.identity == item.identity &&
                       place.cell->canShow(item);
            });
            Place place{std::move(item)};
            if (known != before.end()) {
                place.cell = std::exchange(known->cell, nullptr);
                place.cell->follow(place.item);
            } else if (place.item.kind == BarItem::Kind::widget) {
                place.cell = new Cell(place.item, this);
            }
            places_.push_back(std::move(place));
        }
        for (const Place& place : before)
            if (place.cell)
                retireWidget(*place.cell);
        updateGeometry();
        placeItems();
    }

    QSize sizeHint() const override {
        int width = 2 * margin, height = 0;
        for (const Place& place : places_) {
            width += gap + widthOf(place);
            height = std::max(height, place.cell ? place.cell->sizeHint().height() : 0);
        }
        return {width, std::max(height, more_->sizeHint().height()) + 2 * gap};
    }
    QSize minimumSizeHint() const override {
        return {more_->sizeHint().width() + 2 * margin, sizeHint().height()};
    }

    void placeItems() {
        std::vector<BarLength> wanted = lengths();
        auto spread = spreadItems(wanted, width());
        bool isFull = isTooLong(spread);
        if (isFull) { // then nothing has to begin above a divider
            for (BarLength& length : wanted)
                length.wantedLeft = -1;
            spread = spreadItems(wanted, width());
            isFull = isTooLong(spread);
        }
        const auto endOf = [&](std::size_t i) { return spread[i].left + spread[i].width; };
        const double room = width() - margin - (isFull ? more_->sizeHint().width() + gap : 0);
        bool isOver = false;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            Cell* const cell = places_[i].cell;
            isOver = isOver || (cell && endOf(i) > room + 0.5);
            if (cell)
                cell->setVisible(!isOver);
            if (cell && !isOver)
                putAt(*cell, spread[i].left, spread[i].width);
        }
        more_->setVisible(isFull);
        putAt(*more_, width() - margin - more_->sizeHint().width(), more_->sizeHint().width());
    }

    std::vector<QWidget*> keyWidgets() const {
        std::vector<QWidget*> found;
        for (const Place& place : places_)
            for (QWidget* const widget :
                 place.cell ? place.cell->findChildren<QWidget*>() : QList<QWidget*>())
                if (widget->focusPolicy() & Qt::TabFocus)
                    found.push_back(widget);
        found.push_back(more_);
        return found;
    }

protected:
    bool event(QEvent* event) noexcept override {
        if (event->type() == QEvent::LayoutRequest)
            placeItems();
        return QWidget::event(event);
    }
    void resizeEvent(QResizeEvent*) override { placeItems(); }

private:
    bool isTooLong(const std::vector<BarPlace>& spread) const {
        for (std::size_t i = 0; i < places_.size(); ++i)
            if (places_[i].cell && spread[i].left + spread[i].width > width() - margin + 0.5)
                return true;
        return false;
    }

    static int widthOf(const Place& place) {
        return place.cell ? place.cell->sizeHint().width() : wholeLength(place.item.spaceWidth);
    }

    std::vector<BarLength> lengths() const {
        std::vector<BarLength> lengths;
        for (const Place& place : places_)
            lengths.push_back(
                {.width = static_cast<double>(widthOf(place)),
                 .isFlexible = place.item.kind == BarItem::Kind::flexibleSpace,
                 .wantedLeft = place.item.wantedStart ? place.item.wantedStart(*this) : -1});
        return lengths;
    }

    /// From the leading edge.
    void putAt(QWidget& widget, double start, double length) {
        const int wide = wholeLength(length), tall = widget.sizeHint().height();
        const int left = static_cast<int>(start);
        const int x = isRightToLeft() ? width() - left - wide : left;
        widget.setGeometry(x, (height() - tall) / 2, wide, tall);
    }

    std::vector<Place> places_;
    QToolButton* const more_;
};

ItemBar::ItemBar(Kind kind, QWidget* parent) : QToolBar(parent), kind_(kind) {
    setMovable(false);
    setFloatable(false);
    setIconSize(QSize(20, 20));
    setWindowTitle(kind == Kind::toolbar ? QToolBar::tr("Toolbar") : QToolBar::tr("Touch bar"));
    setAccessibleName(windowTitle());
    row_ = new Row(kind, this);
    addWidget(row_);
}

void ItemBar::show(BarItems items) { row_->show(std::move(items)); }

void ItemBar::placeItems() { row_->placeItems(); }

std::vector<QWidget*> ItemBar::keyWidgets() const { return row_->keyWidgets(); }

bool ItemBar::focusFirst() {
    const auto widgets = keyWidgets();
    const auto first = std::find_if(widgets.begin(), widgets.end(), [](const QWidget* widget) {
        return widget->isVisible() && widget->isEnabled();
    });
    if (first == widgets.end())
        return false;
    (*first)->setFocus(Qt::ShortcutFocusReason);
    return true;
}

void ItemBar::paintEvent(QPaintEvent* event) {
    if (kind_ == Kind::toolbar)
        return QToolBar::paintEvent(event);
    QPainter(this).fillRect(rect(), QColor(28, 28, 28));
}

} // namespace zorvan::internal
