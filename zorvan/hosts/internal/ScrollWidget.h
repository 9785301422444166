#pragma once

#include <zorvan/hosts/internal/HostedWidget.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QPointer>

namespace zorvan::internal {

/// A scroll view: an item view when its document is a table or a collection, else the document
/// between scroll bars.
class ScrollWidget : public HostedWidget<QWidget, NSScrollView> {
public:
    ScrollWidget(const std::shared_ptr<NSScrollView>& scrollView, QWidget* parent);

    QSize sizeHint() const override;
    /// Of the scroll view, or of its clip view.
    void subviewsDidChange() override;

private:
    std::shared_ptr<NSView> document_;
    QPointer<QWidget> shown_;
};

} // namespace zorvan::internal
