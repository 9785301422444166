#pragma once

#include <zorvan/numbers-geometry/CGRect.h>

namespace zorvan {

/// Is told of what changes in a view, after the change: the host that shows it, or a test.
class NSViewObserver {
public:
    virtual ~NSViewObserver() = default;

    /// Another place or size in the superview.
    virtual void frameDidChange() {}
    /// Another part of what the view holds is shown; `animated` when it is to be seen moving there.
    virtual void boundsOriginDidChange(bool /*animated*/) {}
    /// Subviews have come, gone, or stand in another order.
    virtual void subviewsDidChange() {}
    /// A part of the view, in its own coordinates, is to be drawn anew. Controls tell of every
    /// change of their state so.
    virtual void needsDisplay(const CGRect& /*rect*/) {}
    /// The view is hidden or shown, or has another tool tip, pointer, accessible property or next
    /// key view.
    virtual void propertiesDidChange() {}
};

} // namespace zorvan
