#pragma once

#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/TintedButtonCell.h>
#include <zorvan/observation/NoteSubscriber.h>

#include <memory>
#include <optional>
#include <utility>

namespace zorvan {

/// A push button whose image, title and background take colours that depend on its state.
///
/// It sends its action when the mouse goes down. It redraws itself when any window becomes the main
/// one or stops being it, for as long as it stands in a window.
class TintedButton : public NSButton, public TintProperties<TintedButton> {
public:
    /// With a tinted cell, and neither title nor image.
    static std::shared_ptr<TintedButton> create(const CGRect& frame = {});
    /// As large as it would like to be.
    static std::shared_ptr<TintedButton> create(const Title& button);
    /// What the `encode` of any button wrote.
    static std::shared_ptr<TintedButton> create(const Coder& button);
    using NSButton::NSButton;
    ~TintedButton() override;

    /// Covers the bounds; null until the button has come into a window or changed its size.
    const std::shared_ptr<NSTrackingArea>& trackingArea() const noexcept { return trackingArea_; }
    /// What is added to the natural size, half of it on each side of the title and the image.
    /// @{
    const std::optional<CGSize>& expandedSize() const noexcept { return expandedSize_; }
    void setExpandedSize(std::optional<CGSize> size);
    /// @}

    /// Made on first use.
    /// @{
    const std::shared_ptr<NoteSubscriber>& windowDidBecomeMainSubscriber();
    const std::shared_ptr<NoteSubscriber>& windowDidResignMainSubscriber();
    /// @}

    /// Its cell when that is a tinted one, else null.
    std::shared_ptr<TintedButtonCell> tintedButtonCell() const noexcept;

    CGSize intrinsicContentSize() const override;
    void updateTrackingAreas() override;
    void viewWillMove(const std::shared_ptr<NSWindow>& toWindow) override;
    void mouseEntered(const NSEvent& with) override;
    void mouseExited(const NSEvent& with) override;
    void mouseDown(const NSEvent& with) override;
    void mouseDragged(const NSEvent& with) override;
    void mouseUp(const NSEvent& with) override;

private:
    friend class TintProperties<TintedButton>;

    void useTintedCell();
    void markCell(void (TintedButtonCell::*set)(bool), bool value);
    /// Those of the cell.
    const detail::Tints& ownTints() const noexcept;
    template <class Value>
    void setTint(Value detail::Tints::*field, Value value) {
        if (const auto own = tintedButtonCell())
            own->setTint(field, std::move(value));
    }

    std::shared_ptr<NSTrackingArea> trackingArea_;
    std::optional<CGSize> expandedSize_;
    std::shared_ptr<NoteSubscriber> windowDidBecomeMainSubscriber_;
    std::shared_ptr<NoteSubscriber> windowDidResignMainSubscriber_;
};

} // namespace zorvan
