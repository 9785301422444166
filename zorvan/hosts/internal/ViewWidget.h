#pragma once

#include <zorvan/hosts/internal/DrawnWidget.h>

#include <optional>

namespace zorvan::internal {

/// Any view: it draws its own part where that has changed, gets the mouse, the wheel and the keys,
/// and its subviews stand in it as widgets.
class ViewWidget : public DrawnWidget<QWidget, NSView> {
public:
    ViewWidget(const std::shared_ptr<NSView>& view, QWidget* parent);

    void subviewsDidChange() override;
    void needsDisplay(const CGRect& rect) override;
    void boundsOriginDidChange(bool animated) override;
    void frameDidChange() override;
    void propertiesDidChange() override;

protected:
    void paintFocus(QPainter& painter) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override { sendWheel(view_, *event); }
    void keyPressEvent(QKeyEvent* event) override { sendKey(view_, *event); }
    void keyReleaseEvent(QKeyEvent* event) override { sendKey(view_, *event); }
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void placeSubviews();
    bool beginDrag(const QMouseEvent& event);

    /// Where the left button went down, until it is known whether that begins a drag.
    std::optional<QPointF> pressedAt_;
};

} // namespace zorvan::internal
