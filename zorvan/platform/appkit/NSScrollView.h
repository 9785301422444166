#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <memory>

namespace zorvan {

/// Shows a part of a larger view; moving its bounds scrolls.
class NSClipView : public NSView {
public:
    /// Shows nothing at first.
    static std::shared_ptr<NSClipView> create(const CGRect& frame = {});
    /// For `create`.
    using NSView::NSView;

    /// As its document is, so that the two count y alike.
    bool isFlipped() const noexcept override;

    /// What is scrolled; null for none. Setting one takes out the one before.
    /// @{
    const std::shared_ptr<NSView>& documentView() const noexcept { return documentView_; }
    void setDocumentView(const std::shared_ptr<NSView>& view);
    /// @}

    /// Makes changes that observers are told of as animated. The view itself changes at once.
    class Animator {
    public:
        /// For `animator`.
        explicit Animator(std::shared_ptr<NSClipView> view) : view_(std::move(view)) {}
        /// As `NSView::setBoundsOrigin`.
        void setBoundsOrigin(CGPoint origin);

    private:
        std::shared_ptr<NSClipView> view_;
    };
    /// Through which the view scrolls visibly; it keeps the view alive.
    Animator animator() {
        return Animator(std::static_pointer_cast<NSClipView>(shared_from_this()));
    }

private:
    std::shared_ptr<NSView> documentView_;
};

/// A clip view and the document in it.
class NSScrollView : public NSView {
public:
    /// With a content view of its size, and no document.
    static std::shared_ptr<NSScrollView> create(const CGRect& frame = {});
    /// For `create`.
    using NSView::NSView;

    /// The content view follows it.
    void setFrame(const CGRect& frame) override;
    /// Never null.
    const std::shared_ptr<NSClipView>& contentView() const noexcept { return contentView_; }
    /// The document of the content view; null for none.
    /// @{
    const std::shared_ptr<NSView>& documentView() const noexcept {
        return contentView_->documentView();
    }
    void setDocumentView(const std::shared_ptr<NSView>& view) {
        contentView_->setDocumentView(view);
    }
    /// @}

private:
    std::shared_ptr<NSClipView> contentView_;
};

/// The innermost scroll view that the view stands in; null when there is none.
std::shared_ptr<NSScrollView> enclosingScrollView(const NSView& view);

/// What the clip view around `view` shows of it, in the coordinates of `view`; all of it when it is
/// not the document of a clip view.
CGRect visibleRect(const NSView& view);

/// Moves the clip view around `view` as little as it takes to show the rectangle, which is in the
/// coordinates of `view`. Nothing when `view` is not the document of a clip view.
void scrollToVisible(const NSView& view, const CGRect& rect);

} // namespace zorvan
