#pragma once

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/NSGraphicsContext.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/graphics/NSCompositingOperation.h>

#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

/// A picture as interfaces hold it: a size in points, and representations of it, bitmaps at several
/// scales or a drawing that suits any scale. Shared, and used from one thread at a time.
class NSImage : public std::enable_shared_from_this<NSImage> {
    struct Key {};

public:
    using Pointer = std::shared_ptr<NSImage>; ///< How an image is held.

    /// Draws into the rectangle, which is that of the picture, in the current graphics context.
    using Drawing = std::function<void(const CGRect&)>;

    /// A bitmap and the size that it is shown at.
    struct Representation {
        CGImage::Pointer image; ///< Never empty.
        /// In points.
        CGSize size;
    };

    /// Without representations, so transparent.
    static Pointer create(CGSize size);
    /// A size of zero stands for that in pixels. Empty when the bitmap is.
    static Pointer create(CGImage::Pointer image, CGSize size = {});
    /// A picture file, its first picture upright, at its size in pixels, or an SVG, which is drawn
    /// anew for each size in pixels that is asked for. Empty when it cannot be read.
    /// @{
    static Pointer create(const URL& contentsOf);
    static Pointer create(Data data);
    /// @}
    /// A picture that is drawn anew for each size in pixels that is asked for. With `flipped` the
    /// drawing counts y downward.
    static Pointer create(CGSize size, bool flipped, Drawing drawing);

    /// The picture of a name. The first there is of:
    ///
    /// 1. the image that carries the name, see `setName`;
    /// 2. the resource of the main bundle with that name, or with that name and ".png", ".jpg",
    ///    ".jpeg", ".tiff", ".tif", ".heic" or ".svg"; files with "@2x" and "@3x" before the
    ///    extension give further representations;
    /// 3. the icon of that name, for 32 points, in the theme of the desktop, with that for twice as
    ///    many pixels as a further representation.
    ///
    /// A new image each time, but for the first. Empty when there is none.
    static Pointer named(std::string_view name);
    /// A symbol of the library's own set, a template of 18 by 18 points, drawn at any size; see
    /// `systemSymbolNames`. Empty when there is none of that name.
    static Pointer systemSymbol(std::string_view name, std::string accessibilityDescription = {});
    /// The names that `systemSymbol` knows.
    static std::vector<std::string_view> systemSymbolNames();

    /// Makes the image the one that `named` finds, and keeps it, until it gets another name or an
    /// empty one. False, and nothing changed, when another image has the name.
    bool setName(std::string name);
    /// Empty when it has none.
    std::string name() const;

    /// In points; a new size stretches what is shown.
    /// @{
    CGSize size() const noexcept { return size_; }
    void setSize(CGSize size) noexcept { size_ = size; }
    /// @}
    /// (0, 0, size).
    CGRect rect() const noexcept { return {CGPoint(), size_}; }
    /// Whether only the alpha of the picture counts, so that it takes the colours around it.
    /// @{
    bool isTemplate() const noexcept { return isTemplate_; }
    void setTemplate(bool isTemplate) noexcept { isTemplate_ = isTemplate; }
    /// @}
    /// What of the picture counts when it is lined up with others; all of it unless set.
    /// @{
    CGRect alignmentRect() const noexcept { return alignmentRect_.value_or(rect()); }
    void setAlignmentRect(const CGRect& rect) noexcept { alignmentRect_ = rect; }
    /// @}
    /// What the picture shows, for people who do not see it.
    /// @{
    std::string accessibilityDescription() const { return description_; }
    void setAccessibilityDescription(std::string text) { description_ = std::move(text); }
    /// @}

    /// Bitmaps for the same picture; an empty one is not added.
    /// @{
    std::vector<Representation> representations() const;
    void addRepresentation(Representation representation);
    /// @}

    /// The best representation for a rectangle (all of the picture when absent) in a context (one
    /// pixel a point without): the smallest with at least as many pixels as it has there, else the
    /// largest; as it is, not resampled. A drawing is drawn at that size. `hints` are not used.
    /// Empty when there is none.
    CGImage::Pointer cgImageForProposedRect(const std::optional<CGRect>& rect = {},
                                            const NSGraphicsContext::Pointer& context = {},
                                            const PropertyList::Dictionary& hints = {}) const;

    /// How a picture is drawn.
    struct Options {
        /// What of the picture is drawn, in points; all of it when empty.
        CGRect from = {};
        /// How it meets what is there.
        NSCompositingOperation operation = NSCompositingOperation::sourceOver;
        /// Multiplies the alpha.
        double fraction = 1;
        /// Draws upright also where y grows downward.
        bool respectFlipped = true;
    };
    /// Stretched to the rectangle, in the current graphics context.
    /// @{
    void draw(const CGRect& in) const { draw(in, Options{}); }
    void draw(const CGRect& in, const Options& options) const;
    /// @}

    /// Makes the picture what is drawn in: the current graphics context is one of its own, `scale`
    /// pixels to a point, that shows what the picture shows, until `unlockFocus`. What is drawn
    /// becomes its only representation. A picture without area takes no drawing.
    void lockFocus(double scale = 1);
    /// Does nothing when the focus is not locked.
    void unlockFocus();
    /// Calls `body` between the two, also when it throws.
    template <std::invocable Body>
    void useFocus(Body&& body, double scale = 1);

    /// `cgImageForProposedRect` over all of the picture, encoded; absent when there is no bitmap.
    std::optional<Data> data(ImageExportFormat format) const;

    /// For `create`.
    NSImage(Key, CGSize size) noexcept;
    ~NSImage();

private:
    CGImage::Pointer imageFor(CGSize pixels) const;
    CGImage::Pointer drawn(CGSize pixels, const CGRect& part) const;
    void drawShown(const CGRect& whole, const CGRect& from, CGContext& context) const;

    CGSize size_;
    std::vector<Representation> representations_;
    Drawing drawing_;
    bool isDrawingFlipped_ = false;
    bool isTemplate_ = false;
    std::optional<CGRect> alignmentRect_;
    std::string description_;
    /// Where the focus is locked; empty contexts for a picture without area.
    std::vector<std::shared_ptr<CGContext>> focus_;
};

template <std::invocable Body>
void NSImage::useFocus(Body&& body, double scale) {
    struct Unlock {
        NSImage& image;
        ~Unlock() { image.unlockFocus(); }
    };
    lockFocus(scale);
    const Unlock unlock{*this};
    std::forward<Body>(body)();
}

} // namespace zorvan
