#include "PictureViews.h"

#include "drawing.h"
#include "observe.h"

#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>
#include <utility>

using namespace zorvan;

namespace {

struct Column {
    const char* title;
    double width;
    std::string (*text)(const PictureFile&);
    std::optional<PictureOrder> order = {};
};

const Column columns[] = {
    {"Name", 280, [](const PictureFile& file) { return file.title; }, PictureOrder::name},
    {"Date", 130, modifiedText, PictureOrder::date},
    {"Size", 80, byteCountText},
    {"Kind", 70, [](const PictureFile& file) { return file.kind; }},
    {"Folder", 160, [](const PictureFile& file) { return file.folder; }},
};

/// A picture in the grid or in the table: its thumbnail, which is asked for as soon as the cell is
/// there, and its title below or beside it. What it needs not any more it does not wait for.
class PictureCell : public NSView {
public:
    using IsSelected = std::function<bool(const PictureFile::Pointer&)>;

    static std::shared_ptr<PictureCell> create(const PictureFile::Pointer& file, bool isTile,
                                               Thumbnails& thumbnails, IsSelected isSelected) {
        const auto cell = std::make_shared<PictureCell>(Key{}, file, isTile, std::move(isSelected));
        cell->request_ = thumbnails.request(file, [weak = std::weak_ptr(cell)](const auto& image) {
            const auto waiting = weak.lock();
            if (!waiting)
                return;
            waiting->thumbnail_ = image;
            waiting->request_ = nullptr;
            waiting->setNeedsDisplay(true);
        });
        return cell;
    }
    PictureCell(Key key, PictureFile::Pointer file, bool isTile, IsSelected isSelected)
        : NSView(key, {}), file_(std::move(file)), isTile_(isTile),
          isSelected_(std::move(isSelected)) {
        setAccessibilityRole(NSAccessibilityRole::image);
        setAccessibilityLabel(file_->title);
    }
    ~PictureCell() override {
        if (request_)
            request_->cancel();
    }

    void draw(Canvas& canvas) const override {
        constexpr double padding = 6, titleHeight = 18;
        NSGraphicsContext::use(NSGraphicsContext::create(canvas), [&] {
            CGRect box = bounds().shrunkBy({.dx = padding, .dy = padding});
            CGRect title = box;
            if (isTile_) {
                title.size.height = titleHeight;
                box = {box.minX(), box.minY() + titleHeight + padding, box.width(),
                       box.height() - titleHeight - padding};
            } else {
                box = bounds().shrunkBy({.dx = 2, .dy = 2});
                box.size.width = box.height() * 1.3;
                title = {box.maxX() + padding, title.minY(), title.maxX() - box.maxX() - padding,
                         title.height()};
            }
            drawThumbnail(thumbnail_, request_ != nullptr, box);
            drawLine(file_->title, title, isSelected_(file_) ? NSColor::white : inkColor(),
                     isTile_ ? TextAlignment::center : TextAlignment::left);
        });
    }

private:
    const PictureFile::Pointer file_;
    const bool isTile_;
    const IsSelected isSelected_;
    Thumbnails::Image thumbnail_;
    std::shared_ptr<Thumbnails::Request> request_; // while it is pending
};

} // namespace

PictureViews::PictureViews(std::shared_ptr<Album> album, std::shared_ptr<Thumbnails> thumbnails,
                           Actions actions)
    : album_(std::move(album)), thumbnails_(std::move(thumbnails)), actions_(std::move(actions)) {}

std::shared_ptr<PictureViews> PictureViews::create(std::shared_ptr<Album> album,
                                                   std::shared_ptr<Thumbnails> thumbnails,
                                                   Actions actions) {
    const std::shared_ptr<PictureViews> views(
        new PictureViews(std::move(album), std::move(thumbnails), std::move(actions)));
    views->start();
    return views;
}

void PictureViews::start() {
    const auto self = shared_from_this();
    gridScroller_->setDocumentView(grid_);
    tableScroller_->setDocumentView(table_);
    for (const auto& view : {std::shared_ptr<NSView>(grid_), std::shared_ptr<NSView>(table_)})
        view->setAccessibilityLabel("Pictures");
    table_->setRowHeight(36);
    addColumns();
    grid_->setDataSource(self);
    table_->setDataSource(self);
    table_->setDelegate(self);
    observe(Album::Pictures::didReloadNotification, album_->pictures(), self,
            [](const auto& views, const Notification& note) {
                views->follow(*Album::Pictures::edition(note));
            });
    observe(NSCollectionView::selectionDidChangeNotification, grid_, self,
            [](const auto& views, const Notification&) {
                IndexSet selection;
                for (const IndexPath path : views->grid_->selectionIndexPaths())
                    selection.insert(path.item);
                views->selectionDidChange(selection);
            });
    observe(NSTableView::selectionDidChangeNotification, table_, self,
            [](const auto& views, const Notification&) {
                views->selectionDidChange(views->table_->selectedRowIndexes());
            });
}

void PictureViews::addColumns() {
    for (const Column& column : columns) {
        const auto made = NSTableColumn::create(column.title);
        made->setWidth(column.width);
        made->setSortable(column.order.has_value());
        table_->addTableColumn(made);
    }
}

void PictureViews::setThumbnailSize(double size) {
    constexpr double margins = 12, titleHeight = 24, spacing = 6;
    // Enough pixels for the finest display.
    thumbnails_->setSide(static_cast<std::int64_t>(size * 2));
    grid_->setCollectionViewLayout(std::make_shared<NSCollectionViewFlowLayout>(
        CGSize(size + margins, size * 0.75 + titleHeight + margins), spacing));
    grid_->reloadData();
}

void PictureViews::showOrder(PictureOrder order, bool isAscending) {
    const auto shown = std::find_if(std::begin(columns), std::end(columns),
                                    [&](const Column& column) { return column.order == order; });
    const auto index = static_cast<std::size_t>(shown - std::begin(columns));
    table_->setSortOrder(NSTableView::SortOrder{table_->tableColumns()[index], isAscending});
}

void PictureViews::scrollToSelection() {
    const auto& selection = album_->pictures()->selection();
    if (selection.isEmpty())
        return;
    table_->scrollToFirstSelectedRow();
    const auto& layout = grid_->collectionViewLayout();
    scrollToVisible(*grid_, layout->frameOfItem({*selection.first(), 0}));
}

// The list and the views

void PictureViews::follow(const ManagedListEdition& edition) {
    const auto selected = album_->selected();
    selected_ = Album::Files(selected.begin(), selected.end());
    const bool wasFollowing = std::exchange(isFollowing_, true);
    const ManagedListViewReloader reloader(edition);
    reloader.reload(*grid_);
    reloader.reload(*table_);
    isFollowing_ = wasFollowing;
}

void PictureViews::selectionDidChange(const IndexSet& selection) {
    if (!isFollowing_)
        album_->pictures()->setSelection(selection);
}

const PictureFile::Pointer& PictureViews::file(std::int64_t at) const {
    return album_->pictures()->items()[static_cast<std::size_t>(at)];
}

std::shared_ptr<NSView> PictureViews::cell(std::int64_t at, bool isTile) {
    return PictureCell::create(file(at), isTile, *thumbnails_,
                               [weak = weak_from_this()](const PictureFile::Pointer& shown) {
                                   const auto views = weak.lock();
                                   return views && views->selected_.contains(shown);
                               });
}

// What the views ask for

std::string PictureViews::text(const NSTableView&, std::int64_t column, std::int64_t row) const {
    return columns[column].text(*file(row));
}

void PictureViews::sortOrderDidChange(NSTableView&) {
    const auto& order = table_->sortOrder();
    for (std::size_t i = 0; order && i < std::size(columns); ++i)
        if (table_->tableColumns()[i] == order->column)
            actions_.order(columns[i].order.value_or(PictureOrder::name), order->isAscending);
}

void PictureViews::open(std::int64_t at) {
    album_->pictures()->setSelection({at});
    actions_.open();
}
