#pragma once

#include <zorvan/interface/NSControl.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// A text field to search with, which a host shows. It sends its action when the user has changed
/// its text.
class NSSearchField : public NSControl {
public:
    /// Empty, with nothing to send.
    static std::shared_ptr<NSSearchField> create(const CGRect& frame = {});
    /// For `create`.
    using NSControl::NSControl;

    /// Shown while the field is empty; absent for nothing.
    /// @{
    const std::optional<std::string>& placeholderString() const noexcept { return placeholder_; }
    void setPlaceholderString(std::optional<std::string> placeholder);
    /// @}

    /// What the user types: replaces the text and sends the action. Nothing while disabled, and for
    /// the text that is there.
    void enterText(std::string_view text);

    /// 180 points wide.
    CGSize intrinsicContentSize() const override;
    bool acceptsFirstResponder() const override { return isEnabled(); }

protected:
    NSAccessibilityRole ownAccessibilityRole() const override {
        return NSAccessibilityRole::textField;
    }
    /// The placeholder.
    std::string ownAccessibilityLabel() const override { return placeholder_.value_or(""); }
    std::string ownAccessibilityValue() const override { return stringValue(); }

private:
    std::optional<std::string> placeholder_;
};

} // namespace zorvan
