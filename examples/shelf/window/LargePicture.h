#pragma once

#include "Thumbnails.h"

#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>

/// One picture in all the room that there is. It is decoded in the background; until it is there,
/// its thumbnail stands in its place.
class LargePicture : public zorvan::NSView {
public:
    struct Actions {
        /// To a picture after the one that is shown, or before it.
        std::function<void(std::int64_t by)> step;
        std::function<void()> close;
    };
    static std::shared_ptr<LargePicture> create(Actions actions);
    using NSView::NSView;

    /// Nothing for the one that is shown already; null for none.
    void show(const PictureFile::Pointer& file, const Thumbnails& thumbnails);
    const PictureFile::Pointer& file() const { return file_; }
    bool isLoading() const { return request_ != nullptr; }
    /// Null when nothing can be shown of it, or not yet.
    const Thumbnails::Image& image() const { return image_; }

    void draw(zorvan::Canvas& canvas) const override;
    bool acceptsFirstResponder() const override { return true; }
    void keyDown(const zorvan::NSEvent& with) override;
    void mouseDown(const zorvan::NSEvent& with) override;

private:
    void setImage(const Thumbnails::Image& image);

    Actions actions_;
    PictureFile::Pointer file_;
    Thumbnails::Image image_;
    std::shared_ptr<Thumbnails::Request> request_; // while it is pending
};
