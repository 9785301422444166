#pragma once

#include "Album.h"
#include "ShelfSettings.h"
#include "Thumbnails.h"

#include <zorvan/interface/NSCollectionView.h>
#include <zorvan/interface/NSMenu.h>
#include <zorvan/interface/NSTableView.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// The pictures of an album as a grid and as a table, of which one is shown. Both follow each
/// change of the list, and what is selected in them is what is selected in the list.
class PictureViews : public zorvan::NSCollectionViewDataSource,
                     public zorvan::NSTableViewDataSource,
                     public zorvan::NSTableViewDelegate,
                     public std::enable_shared_from_this<PictureViews> {
public:
    struct Actions {
        /// A person has opened the selected picture.
        std::function<void()> open;
        /// A person has clicked on the header of a column.
        std::function<void(PictureOrder, bool isAscending)> order;
    };
    static std::shared_ptr<PictureViews>
    create(std::shared_ptr<Album> album, std::shared_ptr<Thumbnails> thumbnails, Actions actions);

    /// What scrolls the view of that kind.
    const std::shared_ptr<zorvan::NSScrollView>& scrollView(ViewKind kind) const {
        return kind == ViewKind::grid ? gridScroller_ : tableScroller_;
    }
    /// What takes the keyboard there.
    std::shared_ptr<zorvan::NSView> view(ViewKind kind) const {
        return scrollView(kind)->documentView();
    }
    /// In points.
    void setThumbnailSize(double size);
    void setMenu(const std::shared_ptr<zorvan::NSMenu>& menu) {
        gridScroller_->setMenu(menu);
        tableScroller_->setMenu(menu);
    }
    /// Has the header of the table say so.
    void showOrder(PictureOrder order, bool isAscending);
    void scrollToSelection();

    std::int64_t numberOfItems(const zorvan::NSCollectionView&, std::int64_t) const override {
        return album_->pictures()->count();
    }
    std::string text(const zorvan::NSCollectionView&, zorvan::IndexPath item) const override {
        return file(item.item)->title;
    }
    std::shared_ptr<zorvan::NSView> viewForItem(zorvan::NSCollectionView&,
                                                zorvan::IndexPath item) override {
        return cell(item.item, true);
    }
    std::optional<zorvan::URL> draggedURL(const zorvan::NSCollectionView&,
                                          zorvan::IndexPath item) const override {
        return file(item.item)->url;
    }
    void itemOpened(zorvan::NSCollectionView&, zorvan::IndexPath item) override { open(item.item); }

    std::int64_t numberOfRows(const zorvan::NSTableView&) const override {
        return album_->pictures()->count();
    }
    std::string text(const zorvan::NSTableView&, std::int64_t column,
                     std::int64_t row) const override;
    std::optional<zorvan::URL> draggedURL(const zorvan::NSTableView&,
                                          std::int64_t row) const override {
        return file(row)->url;
    }
    void sortOrderDidChange(zorvan::NSTableView&) override;
    std::shared_ptr<zorvan::NSView> view(zorvan::NSTableView&, std::int64_t column,
                                         std::int64_t row) override {
        return column == 0 ? cell(row, false) : nullptr;
    }
    void rowOpened(zorvan::NSTableView&, std::int64_t row) override { open(row); }

private:
    PictureViews(std::shared_ptr<Album> album, std::shared_ptr<Thumbnails> thumbnails,
                 Actions actions);
    void start();
    void open(std::int64_t at);
    void addColumns();
    void follow(const zorvan::ManagedListEdition& edition);
    void selectionDidChange(const zorvan::IndexSet& selection);
    const PictureFile::Pointer& file(std::int64_t at) const;
    std::shared_ptr<zorvan::NSView> cell(std::int64_t at, bool isTile);

    const std::shared_ptr<Album> album_;
    const std::shared_ptr<Thumbnails> thumbnails_;
    const Actions actions_;
    const std::shared_ptr<zorvan::NSCollectionView> grid_ = zorvan::NSCollectionView::create();
    const std::shared_ptr<zorvan::NSTableView> table_ = zorvan::NSTableView::create();
    const std::shared_ptr<zorvan::NSScrollView> gridScroller_ = zorvan::NSScrollView::create(),
                                                tableScroller_ = zorvan::NSScrollView::create();
    Album::Files selected_; // as the list has them, for the cells
    bool isFollowing_ = false;
};
