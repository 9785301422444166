#pragma once

namespace zorvan {

/// Is told of what changes in a window, after the change: the host that shows it, or a test. Its
/// becoming main, its size and its closing are posted as notifications besides.
class NSWindowObserver {
public:
    virtual ~NSWindowObserver() = default;

    /// Something in the window has changed that `layoutIfNeeded` or drawing has not followed yet.
    /// Told once until that is done.
    virtual void viewsNeedDisplay() {}
    /// The title or the least size.
    virtual void propertiesDidChange() {}
    /// There is another content view.
    virtual void contentViewDidChange() {}
    /// There is another toolbar or none, or it shows other items, or one of them looks different.
    virtual void toolbarDidChange() {}
    /// The same for the touch bar.
    virtual void touchBarDidChange() {}
    /// Keys go to another view, or to none.
    virtual void firstResponderDidChange() {}
};

} // namespace zorvan
