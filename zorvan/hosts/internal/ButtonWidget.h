#pragma once

#include <zorvan/interface/NSButton.h>

#include <QAbstractButton>
#include <memory>

namespace zorvan::internal {

/// A button that its cell draws. The mouse goes to the view, so that a button acts when its class
/// says; Space, Enter and screen readers click it.
class ButtonWidget : public QAbstractButton {
public:
    ButtonWidget(const std::shared_ptr<NSButton>& button, QWidget* parent);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) noexcept override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    class Mirror;

    const std::shared_ptr<NSButton> button_;
};

} // namespace zorvan::internal
