#pragma once

#include <zorvan/interface/NSButtonCell.h>
#include <zorvan/interface/TintProperties.h>

#include <memory>
#include <utility>

namespace zorvan {

/// A button cell whose image, title and background have colours for each state. Every change marks
/// the control for redisplay.
class TintedButtonCell : public NSButtonCell, public TintProperties<TintedButtonCell> {
public:
    /// A title and no image.
    static std::shared_ptr<TintedButtonCell> create(Text argument);
    /// An image, which may be null, and no title.
    static std::shared_ptr<TintedButtonCell> create(Image argument);
    /// As a button cell decodes; colours, gradients, angle and radius are absent.
    static std::shared_ptr<TintedButtonCell> create(const Coder& argument);
    using NSButtonCell::NSButtonCell;

    /// False at first; whoever tracks the mouse sets it.
    /// @{
    bool isHover() const noexcept { return isHover_; }
    void setIsHover(bool isHover) { change(isHover_, isHover); }
    bool isPressed() const noexcept { return isPressed_; }
    void setIsPressed(bool isPressed) { change(isPressed_, isPressed); }
    /// @}

    /// A rounded rectangle of the background gradient; that of any button when there is none.
    void drawBezel(const CGRect& withFrame, const NSControl& in) const override;
    /// Smaller by what a tinted button is expanded.
    void drawInterior(const CGRect& withFrame, const NSControl& in) const override;
    void drawImage(const NSImage& image, const CGRect& withFrame,
                   const NSControl& in) const override;
    CGRect drawTitle(const NSAttributedString& title, const CGRect& withFrame,
                     const NSControl& in) const override;

private:
    friend class TintedButton;
    friend class TintProperties<TintedButtonCell>;

    const detail::Tints& ownTints() const noexcept { return tints_; }
    template <class Value>
    void setTint(Value detail::Tints::*field, Value value) {
        change(tints_.*field, std::move(value));
    }
    template <class Value>
    const Value& chosen(const Value& tint, const Value& hover, const Value& pressed,
                        const Value& disabled) const;

    bool isHover_ = false;
    bool isPressed_ = false;
    detail::Tints tints_;
};

} // namespace zorvan
