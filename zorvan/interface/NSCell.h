#pragma once

#include <zorvan/interface/Selector.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

class NSControl;
class NSImage;

/// Where a cell's image stands beside its title.
enum class NSCellImagePosition : std::int64_t {
    noImage = 0,
    imageOnly = 1,
    imageLeft = 2,
    imageRight = 3,
    imageBelow = 4,
    imageAbove = 5,
    imageOverlaps = 6,
    imageLeading = 7,
    imageTrailing = 8,
};

/// What a control shows and what it does; it draws the control. A cell belongs to one control at
/// most.
class NSCell : public std::enable_shared_from_this<NSCell> {
protected:
    /// What only cells can name, so that they are made by `create`.
    struct Key {};

public:
    /// For `create`.
    explicit NSCell(Key) {}
    virtual ~NSCell() = default;
    NSCell(const NSCell&) = delete;
    NSCell& operator=(const NSCell&) = delete;

    /// The control that the cell draws; null outside of one.
    std::shared_ptr<NSControl> controlView() const noexcept { return controlView_.lock(); }

    /// That of the control when it has one.
    /// @{
    bool isEnabled() const noexcept;
    void setEnabled(bool enabled);
    /// @}
    /// While pressed.
    /// @{
    bool isHighlighted() const noexcept { return isHighlighted_; }
    void setHighlighted(bool highlighted);
    /// @}

    /// What the cell says, with its attributes.
    /// @{
    const NSAttributedString& attributedStringValue() const noexcept { return text_; }
    void setAttributedStringValue(NSAttributedString text) { change(text_, std::move(text)); }
    /// @}
    /// The same without attributes.
    /// @{
    std::string stringValue() const { return text_.string(); }
    void setStringValue(std::string_view text) {
        setAttributedStringValue(NSAttributedString(text));
    }
    /// @}

    /// Null for none.
    /// @{
    const std::shared_ptr<NSImage>& image() const noexcept { return image_; }
    virtual void setImage(std::shared_ptr<NSImage> image) { change(image_, std::move(image)); }
    /// @}

    /// To whom the action is sent when the control is used; not kept alive.
    /// @{
    const std::weak_ptr<void>& target() const noexcept { return target_; }
    void setTarget(std::weak_ptr<void> target) noexcept { target_ = std::move(target); }
    /// @}
    /// What is sent when the control is used; absent for nothing.
    /// @{
    const std::optional<Selector>& action() const noexcept { return action_; }
    void setAction(std::optional<Selector> action) { action_ = std::move(action); }
    /// @}

    /// How large the cell would like to be.
    virtual CGSize cellSize() const;
    /// The part of the frame that the cell draws in.
    virtual CGRect drawingRect(const CGRect& forBounds) const { return forBounds; }
    /// Draws the whole cell in the current graphics context.
    virtual void draw(const CGRect& withFrame, const NSControl& in) const {
        drawInterior(withFrame, in);
    }
    /// Draws what is inside the bezel.
    virtual void drawInterior(const CGRect& withFrame, const NSControl& in) const;

protected:
    /// Marks the control for redisplay.
    void didChange();
    /// The same for a property that takes a value.
    template <class Property, class Value>
    void change(Property& property, Value value) {
        property = std::move(value);
        didChange();
    }

private:
    friend class NSControl;

    std::weak_ptr<NSControl> controlView_;
    NSAttributedString text_;
    std::shared_ptr<NSImage> image_;
    std::weak_ptr<void> target_;
    std::optional<Selector> action_;
    bool isEnabled_ = true;
    bool isHighlighted_ = false;
};

} // namespace zorvan
