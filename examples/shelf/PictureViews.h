#pragma once

#include "Picture.h"
#include "PictureList.h"

#include <zorvan/media/NSImage.h>
#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Thumbnails in rows, each with its name and its size below. It stands in a scroll view.
class PictureGrid : public zorvan::NSView {
public:
    static std::shared_ptr<PictureGrid> create(const std::vector<ListedFile>& files,
                                               const std::vector<PictureFacts>& facts);
    using NSView::NSView;

    /// Points; the thumbnails are as wide at most, and about three quarters as high.
    double cellSide() const { return cellSide_; }
    void setCellSide(double side);
    /// Only pictures whose name has the text in it.
    void setFilter(const std::string& text);
    /// Only pictures of that kind; empty for all.
    void setKind(const std::string& kind);
    /// The largest first, or else in the order of the list.
    void setSortedBySize(bool sorted);
    std::optional<std::size_t> selected() const { return selected_; }
    void select(std::optional<std::size_t> index);
    /// The next picture shown, or the one before; the first when none is selected.
    void selectNext(bool forward);
    /// What its rows take.
    double height(double forWidth) const;

    void draw(zorvan::Canvas& canvas) const override;
    void mouseDown(const zorvan::NSEvent& with) override;

private:
    struct Item {
        std::size_t index;
        std::string title;
        std::string detail;
    };

    void reload();
    double boxHeight() const { return cellSide_ * 0.76; }
    double columns(double width) const;
    zorvan::CGRect cell(std::size_t place) const;
    void askForRoom();
    void drawScroller(const zorvan::CGRect& shown) const;
    void drawItem(const Item& item, const zorvan::CGRect& cell) const;
    std::shared_ptr<zorvan::NSImage> thumbnail(std::size_t index) const;

    std::vector<ListedFile> files_;
    std::vector<PictureFacts> facts_;
    std::vector<Item> items_;
    std::string filter_;
    std::string kind_;
    bool isSortedBySize_ = false;
    std::optional<std::size_t> selected_;
    double cellSide_ = 128;
    /// Made when they are first drawn.
    mutable std::vector<std::optional<std::shared_ptr<zorvan::NSImage>>> thumbnails_;
};

/// "JPEG", "Unreadable", ...
std::string kindOf(const PictureFacts& facts);

/// How many pictures there are of each kind. A click on one chooses it.
class KindList : public zorvan::NSView {
public:
    struct Kind {
        std::string symbol;
        std::string name;
        std::size_t count;
    };
    /// The first is chosen at first; `chosen` is called with the number of a kind.
    static std::shared_ptr<KindList> create(std::vector<Kind> kinds,
                                            std::function<void(std::size_t)> chosen);
    using NSView::NSView;

    /// As a click does; nothing when no picture is of that kind.
    void choose(const std::string& kind);

    void draw(zorvan::Canvas& canvas) const override;
    void mouseDown(const zorvan::NSEvent& with) override;

private:
    void choose(std::size_t kind);
    zorvan::CGRect row(std::size_t kind) const;

    std::vector<Kind> kinds_;
    std::size_t chosenKind_ = 0;
    std::function<void(std::size_t)> chosen_;
};

/// The bar below the grid: a line of text, and what is added to it.
class StatusBar : public zorvan::NSView {
public:
    static std::shared_ptr<StatusBar> create(std::string text);
    using NSView::NSView;

    void draw(zorvan::Canvas& canvas) const override;

private:
    std::string text_;
};
