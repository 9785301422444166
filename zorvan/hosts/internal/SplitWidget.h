#pragma once

#include <zorvan/interface/NSSplitView.h>

#include <QSplitter>
#include <memory>

namespace zorvan::internal {

/// A split view: a splitter with a widget for each subview. The view says where the dividers are.
class SplitWidget : public QSplitter {
public:
    SplitWidget(const std::shared_ptr<NSSplitView>& split, QWidget* parent);

protected:
    bool event(QEvent* event) noexcept override;
    void resizeEvent(QResizeEvent* event) override;
    QSplitterHandle* createHandle() override;

private:
    class Mirror;
    void followSubviews();
    void followDividers();
    void followLimits();
    void dividerMoved(int index);

    const std::shared_ptr<NSSplitView> split_;
    bool isFollowing_ = false;
};

} // namespace zorvan::internal
