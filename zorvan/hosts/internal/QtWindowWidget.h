#pragma once

#include <zorvan/interface/NSSearchField.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/observation/NoteSubscriber.h>

#include <QElapsedTimer>
#include <QWidget>
#include <memory>
#include <optional>

namespace zorvan::internal {

/// Below the title bar of the desktop: what the window draws below its own.
class QtWindowWidget : public QWidget {
public:
    explicit QtWindowWidget(std::shared_ptr<NSWindow> window);

    const std::shared_ptr<NSWindow>& shownWindow() const noexcept { return window_; }

    /// Goes, once the event in progress, which may have asked for it, is done with.
    void retire();

protected:
    /// Qt lets no exception through: one that an action or an observer throws ends the program.
    bool event(QEvent* event) noexcept override { return QWidget::event(event); }
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent*) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void windowHasChanged();
    void followLater();
    void followWindow();
    void comeToFront();
    void giveContentItsRoom();
    void redraw();
    void drawFocus(QPainter& painter) const;
    double barsHeight() const;
    std::shared_ptr<NSView> viewAt(const QPointF& position) const;
    CGPoint placeInWindow(const QPointF& position) const;
    void send(NSEvent::EventType type, const QPointF& position, std::int64_t clickCount = 1);
    std::int64_t countClick(const QPointF& position);
    std::shared_ptr<NSSearchField> typedInto() const;
    void focus(const std::shared_ptr<NSSearchField>& field);
    void type(const QString& text);

    const std::shared_ptr<NSWindow> window_;
    const std::shared_ptr<NoteSubscriber> closing_, resizing_, becomingMain_;
    std::optional<Bitmap> drawn_;
    double drawnScale_ = 0;
    bool isClosing_ = false;
    std::weak_ptr<NSSearchField> focused_;

    // The last press, to tell a row of quick ones.
    QElapsedTimer sincePress_;
    QPointF pressedAt_;
    std::int64_t clicks_ = 0;
};

} // namespace zorvan::internal
