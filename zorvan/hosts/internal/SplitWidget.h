#pragma once

#include <zorvan/hosts/internal/HostedWidget.h>
#include <zorvan/interface/NSSplitView.h>

#include <QSplitter>

namespace zorvan::internal {

/// A split view: a splitter with a widget for each subview. The view says where the dividers are.
class SplitWidget : public HostedWidget<QSplitter, NSSplitView> {
public:
    SplitWidget(const std::shared_ptr<NSSplitView>& split, QWidget* parent);

    void subviewsDidChange() override;
    void needsDisplay(const CGRect&) override { followDividers(); }
    void frameDidChange() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    QSplitterHandle* createHandle() override;

private:
    void followDividers();
    void followLimits(const QList<int>& lengths);
    void dividerMoved(int index);

    bool isFollowing_ = false;
};

} // namespace zorvan::internal
