#pragma once

#include <zorvan/interface/NSButtonCell.h>
#include <zorvan/interface/NSControl.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zorvan {

/// A push button. It sends its action when the mouse is released over it.
class NSButton : public NSControl {
public:
    /// A title, and what is sent when the button is pressed.
    struct Title {
        /// What the button says.
        Required<std::string> title;
        /// Whom the action is sent to; not kept alive. Nobody when it is not given.
        std::weak_ptr<void> target = {};
        /// What is sent; absent for nothing.
        std::optional<Selector> action = {};
    };
    /// A button that was written.
    struct Coder {
        /// What `encode` wrote.
        Required<PropertyList::Dictionary> coder;
    };
    /// With a rounded bezel, and neither title nor image.
    static std::shared_ptr<NSButton> create(const CGRect& frame = {});
    /// As large as it would like to be.
    static std::shared_ptr<NSButton> create(const Title& button);
    /// What `encode` wrote; what is not there or of another kind keeps its usual value.
    static std::shared_ptr<NSButton> create(const Coder& button);
    using NSControl::NSControl;

    /// Its frame and what its cell writes.
    PropertyList::Dictionary encode() const;

    /// Its cell when that is a button cell, else null.
    std::shared_ptr<NSButtonCell> buttonCell() const noexcept;

    /// As the button cell has it: empty or absent without one (`noImage`, `rounded`, false), and
    /// setting it then does nothing.
    /// @{
    std::string title() const { return stringValue(); }
    void setTitle(std::string_view title) { setStringValue(title); }
    NSAttributedString attributedTitle() const {
        return cell() ? cell()->attributedStringValue() : NSAttributedString();
    }
    void setAttributedTitle(NSAttributedString title) {
        if (cell())
            cell()->setAttributedStringValue(std::move(title));
    }
    std::shared_ptr<NSImage> image() const { return cell() ? cell()->image() : nullptr; }
    void setImage(std::shared_ptr<NSImage> image) {
        if (cell())
            cell()->setImage(std::move(image));
    }
    NSCellImagePosition imagePosition() const { return ofCell(&NSButtonCell::imagePosition); }
    void setImagePosition(NSCellImagePosition position) {
        setOfCell(&NSButtonCell::setImagePosition, position);
    }
    NSBezelStyle bezelStyle() const {
        return ofCell(&NSButtonCell::bezelStyle, NSBezelStyle::rounded);
    }
    void setBezelStyle(NSBezelStyle style) { setOfCell(&NSButtonCell::setBezelStyle, style); }
    bool isBordered() const { return ofCell(&NSButtonCell::isBordered); }
    void setBordered(bool bordered) { setOfCell(&NSButtonCell::setBordered, bordered); }
    std::optional<NSColor> bezelColor() const { return ofCell(&NSButtonCell::bezelColor); }
    void setBezelColor(std::optional<NSColor> color) {
        setOfCell(&NSButtonCell::setBezelColor, color);
    }
    std::optional<NSColor> contentTintColor() const {
        return ofCell(&NSButtonCell::contentTintColor);
    }
    void setContentTintColor(std::optional<NSColor> color) {
        setOfCell(&NSButtonCell::setContentTintColor, color);
    }
    /// @}

    /// The key that clicks the button wherever the keyboard is, by its character in lower case;
    /// empty, as at first, for none. "\r" makes it the one that Enter presses.
    /// @{
    const std::string& keyEquivalent() const noexcept { return keyEquivalent_; }
    void setKeyEquivalent(std::string key) { keyEquivalent_ = std::move(key); }
    /// @}
    /// What must be held down with it; nothing unless set.
    /// @{
    NSEvent::ModifierFlags keyEquivalentModifierMask() const noexcept { return modifiers_; }
    void setKeyEquivalentModifierMask(NSEvent::ModifierFlags modifiers) { modifiers_ = modifiers; }
    /// @}

    /// While pressed.
    bool isHighlighted() const { return cell() && cell()->isHighlighted(); }
    /// Sends the action, as a click does; nothing when the button is disabled.
    void performClick();

    // A disabled button takes the mouse and does nothing.

    void mouseDown(const NSEvent& with) override;
    void mouseDragged(const NSEvent& with) override;
    void mouseUp(const NSEvent& with) override;

    // An enabled button takes the keyboard; Space and Enter click it.

    bool acceptsFirstResponder() const override { return isEnabled(); }
    void keyDown(const NSEvent& with) override;
    bool performKeyEquivalent(const NSEvent& with) override;

protected:
    NSAccessibilityRole ownAccessibilityRole() const override {
        return NSAccessibilityRole::button;
    }
    /// The title; without one, and without a tool tip, what the image is said to show.
    std::string ownAccessibilityLabel() const override;
    /// A frame as `encode` writes it, and the one that a coder holds under "frame"; what is
    /// missing or of another kind is 0.
    /// @{
    static PropertyList::Dictionary encodeFrame(const CGRect& frame);
    static CGRect decodeFrame(const PropertyList::Dictionary& coder);
    /// @}
    /// Takes the title, target and action over, and the size that the button would like then.
    void apply(const Title& settings);
    /// Gives the button the cell that the class makes.
    void setUp();

private:
    bool isInside(const NSEvent& event) const;
    template <class Value>
    std::remove_cvref_t<Value> ofCell(Value (NSButtonCell::*get)() const,
                                      std::remove_cvref_t<Value> withoutCell = {}) const {
        const auto own = buttonCell();
        return own ? std::invoke(get, *own) : withoutCell;
    }
    template <class Value>
    void setOfCell(void (NSButtonCell::*set)(Value), Value value) {
        if (const auto own = buttonCell())
            std::invoke(set, *own, std::move(value));
    }

    std::string keyEquivalent_;
    NSEvent::ModifierFlags modifiers_;
};

} // namespace zorvan
