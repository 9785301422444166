#pragma once

#include <zorvan/hosts/internal/DrawnWidget.h>
#include <zorvan/interface/NSButton.h>

#include <QAbstractButton>

namespace zorvan::internal {

/// A button that its cell draws. The mouse goes to the view, so that a button acts when its class
/// says; Space, Enter and screen readers click it.
class ButtonWidget : public DrawnWidget<QAbstractButton, NSButton> {
public:
    ButtonWidget(const std::shared_ptr<NSButton>& button, QWidget* parent);

    void needsDisplay(const CGRect& rect) override;

protected:
    bool event(QEvent* event) noexcept override;
    void paintFocus(QPainter& painter) const override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace zorvan::internal
