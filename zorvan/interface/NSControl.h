#pragma once

#include <zorvan/interface/NSCell.h>
#include <zorvan/interface/Selector.h>
#include <zorvan/platform/appkit/NSView.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// A view that its cell draws and that sends an action when it is used.
class NSControl : public NSView {
public:
    /// For `create`.
    using NSView::NSView;

    /// What draws the control; null for none.
    const std::shared_ptr<NSCell>& cell() const noexcept { return cell_; }
    /// The cell leaves the control that it was in. Null for none.
    virtual void setCell(std::shared_ptr<NSCell> cell);

    /// Whether the control can be used; true unless set.
    /// @{
    bool isEnabled() const noexcept { return isEnabled_; }
    void setEnabled(bool enabled);
    /// @}

    /// The text of the cell: empty without one, and setting it then does nothing.
    /// @{
    std::string stringValue() const { return cell_ ? cell_->stringValue() : std::string(); }
    void setStringValue(std::string_view text) {
        if (cell_)
            cell_->setStringValue(text);
    }
    /// @}
    /// Null when it has gone or was never set.
    std::shared_ptr<void> target() const noexcept {
        return cell_ ? cell_->target().lock() : nullptr;
    }
    /// Not kept alive.
    void setTarget(std::weak_ptr<void> target) {
        if (cell_)
            cell_->setTarget(std::move(target));
    }
    /// What the cell sends; absent for nothing and without a cell, when setting it does nothing.
    /// @{
    std::optional<Selector> action() const { return cell_ ? cell_->action() : std::nullopt; }
    void setAction(std::optional<Selector> action) {
        if (cell_)
            cell_->setAction(std::move(action));
    }
    /// @}

    /// Sends the control's own action; false when there is none or nothing performed it.
    bool sendAction();
    /// Sends an action with this control as its sender.
    bool sendAction(const Selector& action, const std::weak_ptr<void>& to);

    /// As large as the cell would like to be.
    CGSize intrinsicContentSize() const override;
    void draw(Canvas& canvas) const override;

private:
    std::shared_ptr<NSCell> cell_;
    bool isEnabled_ = true;
};

} // namespace zorvan
