#include <zorvan/hosts/internal/ButtonWidget.h>

#include <zorvan/hosts/internal/plainTexts.h>

#include <QKeyEvent>

namespace zorvan::internal {

ButtonWidget::ButtonWidget(const std::shared_ptr<NSButton>& button, QWidget* parent)
    : DrawnWidget(button, parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, [this]() noexcept {
        const auto keptAlive = view_;
        keptAlive->performClick();
    });
    follow();
    needsDisplay(button->bounds());
}

void ButtonWidget::needsDisplay(const CGRect&) {
    setEnabled(view_->isEnabled());
    const QString name = withoutKeyMark(toQString(view_->accessibilityLabel()));
    if (text() != name)
        setText(name); // what a screen reader says
    update();
}

/// Qt tells what is disabled of no release, even if its own action has disabled it.
bool ButtonWidget::event(QEvent* event) noexcept {
    if (event->type() != QEvent::MouseButtonRelease || isEnabled())
        return DrawnWidget::event(event);
    const EventInProgress inProgress;
    mouseReleaseEvent(static_cast<QMouseEvent*>(event));
    return true;
}

void ButtonWidget::paintFocus(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 7, 7);
}

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !(event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)))
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace zorvan::internal
