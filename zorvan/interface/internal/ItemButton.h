#pragma once

#include <zorvan/interface/NSButton.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zorvan {

/// What a toolbar shows of an item that has an image but no view.
class ItemButton : public NSButton {
public:
    /// `pressed` is called when the button is used.
    static std::shared_ptr<ItemButton> create(std::function<void()> pressed);
    using NSButton::NSButton;

    /// Changes only what is shown otherwise.
    void show(const std::string& title, const std::shared_ptr<NSImage>& image, bool enabled);
    /// A mark at the right edge that says that a menu opens.
    void setShowsIndicator(bool shows);

    CGSize intrinsicContentSize() const override;
    void draw(Canvas& canvas) const override;

private:
    bool showsIndicator_ = false;
};

} // namespace zorvan
