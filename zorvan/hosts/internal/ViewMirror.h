#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <QPointer>
#include <QWidget>
#include <memory>
#include <string>

namespace zorvan::internal {

/// Keeps a widget as its view is: place, visibility, tool tip, pointer, accessible name. The widget
/// keeps its mirror, and the mirror the view, alive.
///
/// A kind of widget that follows more overrides what it wants to be told of.
class ViewMirror : public NSViewObserver {
public:
    ViewMirror(std::shared_ptr<NSView> view, QWidget& widget);

    /// Lets the mirror follow its view from now on, and brings the widget up to date.
    static void attach(const std::shared_ptr<ViewMirror>& mirror);

    const std::shared_ptr<NSView>& view() const noexcept { return view_; }

    void frameDidChange() override;
    void propertiesDidChange() override;

protected:
    /// Null once the widget is on its way out.
    QWidget* widget() const noexcept { return widget_; }
    /// Everything that can have changed.
    virtual void followAll();

private:
    bool isPlacedByItsView() const;
    void announce();

    const std::shared_ptr<NSView> view_;
    const QPointer<QWidget> widget_;
    std::string announced_;
};

/// The view that the widget shows; null for a widget of another kind.
std::shared_ptr<NSView> viewOf(const QWidget* widget);

/// The widget below `top`, or it itself, that shows the view, a visible one if possible; null when
/// there is none.
QWidget* widgetOf(const NSView& view, QWidget& top);

} // namespace zorvan::internal
