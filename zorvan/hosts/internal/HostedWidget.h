#pragma once

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/interface/NSWindow.h>

#include <QEvent>
#include <memory>
#include <utility>

namespace zorvan::internal {

/// A widget of Qt that shows a view: where it has the keyboard, the view has it.
template <class Widget, class View>
class HostedWidget : public Widget, public ViewMirror {
public:
    HostedWidget(std::shared_ptr<View> view, QWidget* parent)
        : Widget(parent), ViewMirror(view, static_cast<QWidget&>(*this)), view_(std::move(view)) {}

protected:
    // Qt lets no exception through: one that an action or an observer throws ends the program.
    bool event(QEvent* event) noexcept override {
        const EventInProgress inProgress;
        return Widget::event(event);
    }

    void focusInEvent(QFocusEvent* event) override {
        Widget::focusInEvent(event);
        const auto window = view_->window();
        if (window && !window->makeFirstResponder(view_))
            this->giveFocusBack(*window);
    }

    const std::shared_ptr<View> view_;
};

} // namespace zorvan::internal
