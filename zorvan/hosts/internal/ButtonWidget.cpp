#include <zorvan/hosts/internal/ButtonWidget.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSWindow.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace zorvan::internal {

class ButtonWidget::Mirror : public ViewMirror {
public:
    Mirror(const std::shared_ptr<NSButton>& button, ButtonWidget& widget)
        : ViewMirror(button, widget) {}

    void needsDisplay(const CGRect&) override {
        auto* const own = static_cast<ButtonWidget*>(widget());
        if (!own)
            return;
        own->setEnabled(own->button_->isEnabled());
        const QString name = toQString(view()->accessibilityLabel());
        if (own->text() != name)
            own->setText(name); // what a screen reader says
        own->update();
    }

protected:
    void followAll() override {
        ViewMirror::followAll();
        needsDisplay(view()->bounds());
    }
};

ButtonWidget::ButtonWidget(const std::shared_ptr<NSButton>& button, QWidget* parent)
    : QAbstractButton(parent), button_(button) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, [this]() noexcept {
        const auto keptAlive = button_;
        keptAlive->performClick();
    });
    ViewMirror::attach(std::make_shared<Mirror>(button, *this));
}

QSize ButtonWidget::sizeHint() const { return toQSize(button_->fittingSize()); }

bool ButtonWidget::event(QEvent* event) noexcept { return QAbstractButton::event(event); }

void ButtonWidget::paintEvent(QPaintEvent* event) {
    button_->setNeedsDisplay(false);
    ViewWidget::paintView(*button_, *this, event->rect());
    if (!hasFocus() || !button_->showsFocusRing())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().highlight(), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 7, 7);
}

void ButtonWidget::mousePressEvent(QMouseEvent* event) { sendMouse(button_, *event); }

void ButtonWidget::mouseMoveEvent(QMouseEvent* event) { sendMouse(button_, *event); }

void ButtonWidget::mouseReleaseEvent(QMouseEvent* event) { sendMouse(button_, *event); }

void ButtonWidget::leaveEvent(QEvent*) { sendLeave(button_, *this); }

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !(event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)))
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void ButtonWidget::focusInEvent(QFocusEvent* event) {
    QAbstractButton::focusInEvent(event);
    if (const auto window = button_->window())
        window->makeFirstResponder(button_);
}

void ButtonWidget::contextMenuEvent(QContextMenuEvent* event) {
    openContextMenu(button_, *this, *event);
}

} // namespace zorvan::internal
