#pragma once

#include <zorvan/hosts/internal/ViewMirror.h>

#include <QWidget>
#include <memory>
#include <optional>

namespace zorvan::internal {

/// Any view: it draws its own part where that has changed, gets the mouse, the wheel and the keys,
/// and its subviews stand in it as widgets.
class ViewWidget : public QWidget {
public:
    ViewWidget(const std::shared_ptr<NSView>& view, QWidget* parent);

    /// Draws the view's own part that the event asks for.
    static void paintView(const NSView& view, QWidget& widget, const QRect& changed);

protected:
    /// Qt lets no exception through: one that an action or an observer throws ends the program.
    bool event(QEvent* event) noexcept override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    /// A content view is sized by its window, a view in a bar by the bar.
    QSize sizeHint() const override;

private:
    class Mirror;
    void followSubviews();
    void orderSubviews();
    bool beginDrag(const QMouseEvent& event);

    const std::shared_ptr<NSView> view_;
    /// Where the left button went down, until it is known whether that begins a drag.
    std::optional<QPointF> pressedAt_;
};

/// Opens the context menu of the view, if there is one; by the keyboard in the middle of it.
void openContextMenu(const std::shared_ptr<NSView>& view, QWidget& widget,
                     QContextMenuEvent& event);

} // namespace zorvan::internal
