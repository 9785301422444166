#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <QWidget>
#include <memory>
#include <string>
#include <vector>

namespace zorvan {
class NSWindow;
}

namespace zorvan::internal {

/// The part of a widget that keeps it as its view is: place, visibility, tool tip, pointer,
/// accessible name. It keeps the view alive, and is told of it until the widget goes.
///
/// A kind of widget that follows more overrides what it wants to be told of.
class ViewMirror : public NSViewObserver {
public:
    const std::shared_ptr<NSView>& shownView() const noexcept { return shown_; }

    void frameDidChange() override;
    void propertiesDidChange() override;

protected:
    ViewMirror(std::shared_ptr<NSView> view, QWidget& widget);

    /// Brings the widget, once it is whole, up to date, and lets it follow its view from now on.
    void follow();
    /// The keyboard goes back to the widget of the window's first responder, which keeps it.
    void giveFocusBack(const NSWindow& window);
    /// The widget, as one that is told of a view until it goes.
    template <class Observer>
    std::shared_ptr<Observer> untilItGoes(Observer& widget) const {
        return {life_, &widget};
    }

private:
    void announce();
    void orderKeyViews();

    const std::shared_ptr<NSView> shown_;
    QWidget& widget_;
    const std::shared_ptr<void> life_ = std::make_shared<char>();
    std::string announced_;
};

/// The view that the widget shows; null for a widget of another kind.
std::shared_ptr<NSView> viewOf(const QWidget* widget);

/// The widget below `top`, or it itself, that shows the view, a visible one if possible; null when
/// there is none.
QWidget* widgetOf(const NSView& view, QWidget& top);

/// The widgets of views that stand directly in a widget, from the back to the front.
std::vector<QWidget*> shownIn(const QWidget& holder);

/// Takes a widget out of the one that it stands in. It may be in the middle of an event that asked
/// for it.
void letGo(QWidget& widget);
/// The same with all that stand directly in a widget, but for those that show these views.
void letGoOfAllBut(const QWidget& holder, const std::vector<std::shared_ptr<NSView>>& views);

} // namespace zorvan::internal
