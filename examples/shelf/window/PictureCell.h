#pragma once

#include "Thumbnails.h"

#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>

/// A picture in the grid or in the table: its thumbnail, which is asked for as soon as the cell is
/// there, and its title below or beside it. What it needs not any more it does not wait for.
class PictureCell : public zorvan::NSView {
public:
    enum class Style { tile, line };
    using IsSelected = std::function<bool(const PictureFile::Pointer&)>;

    static std::shared_ptr<PictureCell> create(PictureFile::Pointer file, Style style,
                                               Thumbnails& thumbnails, IsSelected isSelected);
    using NSView::NSView;
    ~PictureCell() override;

    void draw(zorvan::Canvas& canvas) const override;

private:
    PictureFile::Pointer file_;
    Style style_ = Style::tile;
    IsSelected isSelected_;
    Thumbnails::Image thumbnail_;
    std::shared_ptr<Thumbnails::Request> request_; // while it is pending
};
