#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/interface/NSCell.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/Required.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// How the bezel of a button looks.
enum class NSBezelStyle : std::int64_t { rounded = 1, texturedRounded = 11 };

/// The cell of a push button: a bezel, and on it an image and a title.
class NSButtonCell : public NSCell {
public:
    /// A cell's title.
    struct Text {
        /// What the cell says.
        Required<std::string> text;
    };
    /// A cell's image.
    struct Image {
        /// Null for none.
        Required<std::shared_ptr<NSImage>> image;
    };
    /// A cell that was written.
    struct Coder {
        /// What `encode` wrote.
        Required<PropertyList::Dictionary> coder;
    };
    /// A title and no image.
    static std::shared_ptr<NSButtonCell> create(Text argument);
    /// An image, which may be null, and no title.
    static std::shared_ptr<NSButtonCell> create(Image argument);
    /// What `encode` wrote; what is not there or of another kind keeps its usual value.
    static std::shared_ptr<NSButtonCell> create(const Coder& argument);
    /// For `create`.
    using NSCell::NSCell;

    /// Title, image (by its name), image position, bezel and whether enabled. Target and action,
    /// which belong to the running program, are not written.
    PropertyList::Dictionary encode() const;

    /// What the cell says.
    const NSAttributedString& attributedTitle() const noexcept { return attributedStringValue(); }
    /// What has no font is set in that of the system, what has no colour in that of labels.
    void setAttributedTitle(NSAttributedString title) {
        setAttributedStringValue(std::move(title));
    }
    /// The same without attributes.
    /// @{
    std::string title() const { return stringValue(); }
    void setTitle(std::string_view title) { setStringValue(title); }
    /// @}

    /// Gives a cell that shows no image a position for it: alone when there is no title, else to
    /// the left of it.
    void setImage(std::shared_ptr<NSImage> image) override;
    /// Where the image stands beside the title; `noImage` until an image is set.
    /// @{
    NSCellImagePosition imagePosition() const noexcept { return imagePosition_; }
    void setImagePosition(NSCellImagePosition position) { change(imagePosition_, position); }
    /// @}

    /// Rounded unless set.
    /// @{
    NSBezelStyle bezelStyle() const noexcept { return bezelStyle_; }
    void setBezelStyle(NSBezelStyle style) { change(bezelStyle_, style); }
    /// @}
    /// Whether there is a bezel.
    /// @{
    bool isBordered() const noexcept { return isBordered_; }
    void setBordered(bool bordered) { change(isBordered_, bordered); }
    /// @}
    /// Absent for that of the system.
    /// @{
    const std::optional<NSColor>& bezelColor() const noexcept { return bezelColor_; }
    void setBezelColor(std::optional<NSColor> color) { change(bezelColor_, color); }
    /// @}
    /// Of template images and of the title where it has no colour; absent for that of labels.
    /// @{
    const std::optional<NSColor>& contentTintColor() const noexcept { return contentTintColor_; }
    void setContentTintColor(std::optional<NSColor> color) { change(contentTintColor_, color); }
    /// @}

    CGSize cellSize() const override;
    /// Where image and title stand in a frame; no rectangle for what is not shown.
    CGRect imageRect(const CGRect& forBounds) const { return placement(forBounds).image; }
    /// The same of the title.
    CGRect titleRect(const CGRect& forBounds) const { return placement(forBounds).title; }

    /// The bezel, then the interior.
    void draw(const CGRect& withFrame, const NSControl& in) const override;
    /// The image, then the title.
    void drawInterior(const CGRect& withFrame, const NSControl& in) const override;
    /// Fills and outlines the bezel, in other colours while pressed, and fainter when disabled.
    virtual void drawBezel(const CGRect& withFrame, const NSControl& in) const;
    /// Draws a template in the colour of the title, any other picture as it is; fainter when
    /// disabled.
    virtual void drawImage(const NSImage& image, const CGRect& withFrame,
                           const NSControl& in) const;
    /// Where the title was drawn.
    virtual CGRect drawTitle(const NSAttributedString& title, const CGRect& withFrame,
                             const NSControl& in) const;

protected:
    /// Takes over what `encode` wrote.
    void decode(const PropertyList::Dictionary& coder);

private:
    struct Placement {
        CGRect image, title;
    };
    Placement placement(const CGRect& bounds) const;
    CGSize shownImageSize() const;
    CGSize shownTitleSize() const;
    NSColor labelColor(const NSControl& in) const;

    NSCellImagePosition imagePosition_ = NSCellImagePosition::noImage;
    NSBezelStyle bezelStyle_ = NSBezelStyle::rounded;
    bool isBordered_ = true;
    std::optional<NSColor> bezelColor_;
    std::optional<NSColor> contentTintColor_;
};

} // namespace zorvan
