#pragma once

#include <zorvan/hosts/internal/HostedWidget.h>
#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace zorvan::internal {

/// Draws the view's own part that is asked for.
void paintView(const NSView& view, QWidget& widget, const QRect& changed);

/// A widget that its view draws, and that hands the view the mouse.
template <class Widget, class View>
class DrawnWidget : public HostedWidget<Widget, View> {
public:
    using HostedWidget<Widget, View>::HostedWidget;

    /// A content view is sized by its window, a view in a bar by the bar.
    QSize sizeHint() const override { return toQSize(this->view_->fittingSize()); }

protected:
    /// Around what has the keyboard.
    virtual void paintFocus(QPainter& painter) const = 0;

    void paintEvent(QPaintEvent* event) override {
        this->view_->setNeedsDisplay(false);
        paintView(*this->view_, *this, event->rect());
        if (!this->hasFocus() || !this->view_->showsFocusRing())
            return;
        QPainter painter(this);
        painter.setPen(QPen(this->palette().highlight(), 2));
        paintFocus(painter);
    }
    void mousePressEvent(QMouseEvent* event) override { sendMouse(this->view_, *event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { this->mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override { sendMouse(this->view_, *event); }
    void mouseReleaseEvent(QMouseEvent* event) override { sendMouse(this->view_, *event); }
    void leaveEvent(QEvent*) override { sendLeave(this->view_, *this); }
    void contextMenuEvent(QContextMenuEvent* event) override {
        openContextMenu(this->view_, *this, *event);
    }
};

} // namespace zorvan::internal
