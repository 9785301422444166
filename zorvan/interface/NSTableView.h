#pragma once

#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/SelectableArrayEdition.h>
#include <zorvan/interface/NSTableColumn.h>
#include <zorvan/platform/appkit/NSScrollView.h>
#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/appkit/ObserverList.h>
#include <zorvan/platform/foundation/NameLiteral.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

class NSTableView;
class NSTableViewObserver;

namespace internal {
class RowChange;
template <class Change>
void updateRows(NSTableView& table, const Change& change);
} // namespace internal

/// Gives a table its rows. What is not overridden is empty, absent, false, or does nothing.
class NSTableViewDataSource {
public:
    virtual ~NSTableViewDataSource() = default;
    /// Below 0 counts as none.
    virtual std::int64_t numberOfRows(const NSTableView& table) const = 0;
    /// The text of a cell, which the table draws where it has no cell view.
    virtual std::string text(const NSTableView& table, std::int64_t column, std::int64_t row) const;
    /// What a drag of the row carries out of the window, such as a file; absent when it stays.
    virtual std::optional<URL> draggedURL(const NSTableView& table, std::int64_t row) const;
    /// Whether a person may drag the row to another place of the table.
    virtual bool isMovable(const NSTableView& table, std::int64_t row) const;
    /// A person has dragged movable rows before the one at `before`, or to the end: move what they
    /// show, and tell the table.
    virtual void rowsDragged(NSTableView& table, const IndexSet& rows, std::int64_t before);
    /// Whether files, or other addresses, that come from elsewhere may be dropped between the rows.
    virtual bool acceptsDrop(const NSTableView& table, const std::vector<URL>& urls) const;
    /// They were dropped before the row at `before`, or at the end.
    virtual void urlsDropped(NSTableView& table, const std::vector<URL>& urls, std::int64_t before);
    /// The table's `sortOrder` is another one: sort what the rows show, and tell the table.
    virtual void sortOrderDidChange(NSTableView& table);
};

/// Gives a table its looks.
class NSTableViewDelegate {
public:
    virtual ~NSTableViewDelegate() = default;
    /// A new view for a cell; null for none.
    virtual std::shared_ptr<NSView> view(NSTableView& table, std::int64_t column, std::int64_t row);
    /// In points; the table's `rowHeight` unless overridden. Not asked of a table with more than
    /// 16,777,216 rows, whose rows are all of one height.
    virtual double heightOfRow(const NSTableView& table, std::int64_t row) const;
    /// A person opens the row, by a double click or with Enter. Does nothing unless overridden.
    virtual void rowOpened(NSTableView& table, std::int64_t row);
};

/// A table of rows and columns.
///
/// It knows how many rows it has, which are selected, and which cell views stand where, and keeps
/// that right through insertions, removals and moves. It is told of changes; it does not look for
/// them: when the outermost `endUpdates` finds that the data source has another number of rows than
/// the table was told of, it stops the program. Rows are counted from 0 at the top; a row that does
/// not exist stops the program in the operations that change rows, and is passed over elsewhere.
///
/// The data source and the delegate are not kept alive. Main thread only.
class NSTableView : public NSView {
public:
    /// How insertions and removals are shown; a set of options.
    struct AnimationOptions {
        /// One bit for each option.
        std::uint64_t rawValue = 0;

        /// How rows come and go: at once, fading, opening a gap, or sliding that way.
        /// @{
        static const AnimationOptions effectNone;
        static const AnimationOptions effectFade;
        static const AnimationOptions effectGap;
        static const AnimationOptions slideUp;
        static const AnimationOptions slideDown;
        static const AnimationOptions slideLeft;
        static const AnimationOptions slideRight;
        /// @}

        friend constexpr bool operator==(AnimationOptions, AnimationOptions) noexcept = default;
        /// Those of both.
        friend constexpr AnimationOptions operator|(AnimationOptions a,
                                                    AnimationOptions b) noexcept {
            return {a.rawValue | b.rawValue};
        }
    };

    /// Whole rows.
    struct Rows {
        /// Rows that there are not are passed over.
        Required<IndexSet> forRowIndexes;
    };
    /// Whole columns.
    struct Columns {
        /// Columns that there are not are passed over.
        Required<IndexSet> forColumnsIndexes;
    };
    /// The cells where these rows and columns meet.
    struct RowsAndColumns {
        /// Rows that there are not are passed over.
        Required<IndexSet> forRowIndexes;
        /// Columns that there are not are passed over.
        Required<IndexSet> columnIndexes;
    };

    /// By which column the rows stand, as a person asked for it.
    struct SortOrder {
        /// By whose cells.
        std::shared_ptr<NSTableColumn> column;
        /// Otherwise the other way round.
        bool isAscending = true;

        friend bool operator==(const SortOrder&, const SortOrder&) = default;
    };

    /// Posted by the table when its selection has changed.
    static constexpr NameLiteral selectionDidChangeNotification =
        "NSTableViewSelectionDidChangeNotification";

    /// Without data source, columns and rows.
    static std::shared_ptr<NSTableView> create(const CGRect& frame = {});
    /// For `create`.
    using NSView::NSView;

    bool isFlipped() const noexcept override { return true; }
    void draw(Canvas& canvas) const override;

    /// Null when there is none, or it has gone.
    std::shared_ptr<NSTableViewDataSource> dataSource() const noexcept {
        return dataSource_.lock();
    }
    /// Reloads.
    void setDataSource(const std::shared_ptr<NSTableViewDataSource>& source);
    /// Null when there is none, or it has gone.
    std::shared_ptr<NSTableViewDelegate> delegate() const noexcept { return delegate_.lock(); }
    /// Reloads.
    void setDelegate(const std::shared_ptr<NSTableViewDelegate>& delegate);

    /// Whoever shows the table, and tests. Not kept alive.
    using NSView::addObserver;
    /// Told of what changes in rows and columns. Not kept alive.
    void addObserver(const std::shared_ptr<NSTableViewObserver>& observer) {
        observers_.add(observer);
    }

    /// From left to right.
    const std::vector<std::shared_ptr<NSTableColumn>>& tableColumns() const noexcept {
        return columns_;
    }
    /// 0 at first.
    std::int64_t numberOfColumns() const noexcept {
        return static_cast<std::int64_t>(columns_.size());
    }
    /// At the right end. Every cell view is forgotten, here and where a column is removed.
    void addTableColumn(std::shared_ptr<NSTableColumn> column);
    /// Not null; nothing is removed when the table does not have it.
    void removeTableColumn(const std::shared_ptr<NSTableColumn>& column);
    /// Removes columns from the last one down, or adds new ones at the end. None for a negative
    /// number.
    void setNumberOfColumns(std::int64_t to);
    /// None at first, and when its column has gone.
    const std::optional<SortOrder>& sortOrder() const noexcept { return sortOrder_; }
    /// Tells the data source of another order. A column that the table does not have means none.
    void setSortOrder(std::optional<SortOrder> order);
    /// Gives the first column the width of the enclosing scroll view, or 100 points without one.
    void expandFirstColumnWidth();

    /// As the table has been told so far.
    std::int64_t numberOfRows() const noexcept { return rowCount_; }
    /// In points; 0 when there is no such row.
    double heightOfRow(std::int64_t row) const;
    /// In points, for rows to which the delegate gives no other; 24 unless set.
    /// @{
    double rowHeight() const noexcept { return rowHeight_; }
    void setRowHeight(double height);
    /// @}

    /// Updates nest.
    void beginUpdates();
    /// Stops the program when no updates have begun, and when the outermost one ends with another
    /// number of rows than the data source has.
    void endUpdates();
    /// The positions are those of the new rows once all have been inserted.
    void insertRows(IndexSet at, AnimationOptions withAnimation);
    /// The positions are those of the rows before any has gone.
    void removeRows(IndexSet at, AnimationOptions withAnimation);
    /// `to` is where the row stands afterwards.
    void moveRow(std::int64_t at, std::int64_t to);
    /// Moves the rows, in their order, before the one that stands at `to`; all at once, where
    /// `moveRow` for each would end the same.
    void moveRows(IndexSet at, std::int64_t to);

    /// Takes the number of rows from the data source and forgets every cell view.
    void reloadData();
    /// Forgets these cells' views, which are asked for again. Rows stay as many as they are.
    /// @{
    void reloadData(const RowsAndColumns& cells);
    void reloadData(const Rows& rows) { reloadData({rows.forRowIndexes, allColumns()}); }
    void reloadData(const Columns& columns) { reloadData({allRows(), columns.forColumnsIndexes}); }
    /// @}
    /// These three do nothing without columns.
    /// @{
    void reloadFirstColumnData();
    void reloadLastColumnData();
    void reloadFirstAndLastColumnData();
    /// @}
    /// Shows an edition of a `SelectableArray`. When something throws in the middle of rows that
    /// come, go or move, the table reloads.
    void reloadEditedData(const SelectableArrayEdition& edition, AnimationOptions animation);

    /// Asks the delegate for the heights anew.
    /// @{
    void noteHeightOfRows(IndexSet withIndexesChanged);
    void noteHeightOfAllRowsChanged() { noteHeightOfRows(allRows()); }
    /// @}
    /// As `noteHeightOfAllRowsChanged`, not animated.
    void resizeRowHeights();

    /// Empty when no row is selected.
    const IndexSet& selectedRowIndexes() const noexcept { return selection_; }
    /// Rows that do not exist are passed over. A selection that stays the same is not announced.
    void selectRowIndexes(const IndexSet& indexes, bool byExtendingSelection);
    /// Selects these and no others.
    /// @{
    void selectOnlyRows(const IndexSet& at) { selectRowIndexes(at, false); }
    void selectOnlyRow(std::int64_t at) { selectRowIndexes({at}, false); }
    /// @}
    /// Selects these besides those that are selected.
    /// @{
    void selectAlsoRows(const IndexSet& at) { selectRowIndexes(at, true); }
    void selectAlsoRow(std::int64_t at) { selectRowIndexes({at}, true); }
    /// @}

    /// Selects the row at the press: with the shift key all rows from the nearest selected one,
    /// with the control or command key that row besides, or no longer.
    void mouseDown(const NSEvent& with) override;
    bool acceptsFirstResponder() const override { return true; }
    /// In a clip view the table is as large as its columns and rows.
    void viewDidMoveToSuperview() override;

    /// The row last clicked, -1 for none; whoever shows the table sets it.
    /// @{
    std::int64_t clickedRow() const noexcept { return clickedRow_; }
    void setClickedRow(std::int64_t row) noexcept { clickedRow_ = row; }
    /// @}
    /// What a click is about: the whole selection when the clicked row is in it, else that row
    /// alone; empty when no row was clicked.
    IndexSet clickedRowIndexes() const;

    /// In the table's coordinates; zero when there is no such cell.
    CGRect frameOfCell(std::int64_t atColumn, std::int64_t row) const;
    /// The row at a height of the table, or -1.
    std::int64_t row(double atY) const;
    /// Scrolls no more than it takes to show all of the row.
    void scrollRowToVisible(std::int64_t row);
    /// Nothing when no row is selected.
    /// @{
    void scrollToFirstSelectedRow() { scrollRowToVisible(selection_.first().value_or(-1)); }
    void scrollToLastSelectedRow() { scrollRowToVisible(selection_.last().value_or(-1)); }
    /// @}
    /// Scrolls so that the row is in the middle, or at the top; past the ends when need be. Nothing
    /// without an enclosing scroll view.
    /// @{
    void centreRow(std::int64_t row, bool animated);
    void scrollTopRow(std::int64_t row, bool animated);
    /// @}

    /// The view of a cell; null when there is no such cell, when the delegate gives none, and when
    /// it has not been made and is not to be.
    std::shared_ptr<NSView> view(std::int64_t atColumn, std::int64_t row, bool makeIfNecessary);
    /// The view at column 0 of the first row, of the last, or of the given one, when it has been
    /// made.
    /// @{
    std::shared_ptr<NSView> firstCellView() { return cell(0); }
    std::shared_ptr<NSView> lastCellView() { return cell(rowCount_ - 1); }
    std::shared_ptr<NSView> cell(std::int64_t at) { return view(0, at, false); }
    /// @}
    /// Forgets the cell views of all other rows; whoever shows the table calls it for those that
    /// are out of sight.
    void keepCellViews(const IndexSet& ofRows);
    /// The text that is shown where there is no cell view; empty when there is no such cell.
    std::string text(std::int64_t column, std::int64_t row) const;

protected:
    /// How many rows the table should have, as its source says.
    virtual std::int64_t sourceRowCount();
    /// A cell's text, for drawing.
    virtual std::string cellText(std::int64_t column, std::int64_t row) const;
    /// Carries cell views and selection over, tells the observers by `tell`, then announces another
    /// selection.
    void changeRows(const internal::RowChange& change, const std::function<void()>& tell);

private:
    IndexSet allRows() const { return IndexSet(IndexSet::Range{0, rowCount_}); }
    IndexSet allColumns() const { return IndexSet(IndexSet::Range{0, numberOfColumns()}); }
    using CellViews = std::map<std::int64_t, std::vector<std::shared_ptr<NSView>>>;
    friend class NSTableColumn;
    template <class Change>
    friend void internal::updateRows(NSTableView& table, const Change& change);

    std::shared_ptr<NSTableView> self() noexcept;
    void columnDidChange(const NSTableColumn& column);
    void forgetCellViews();
    /// To be called with the views no longer in `cells_`: those who are told may ask the table.
    static void takeOut(const CellViews& views);
    void setSelection(IndexSet selection);
    void announceSelection();
    void checkRows(const IndexSet& rows) const;
    void setRowCount(std::int64_t count) noexcept;
    /// Ends updates that something has cut short, down to the depth that there was before. Not
    /// everybody has been told of them all, nor need they have been made: everything is reloaded.
    void abandonUpdates(std::int64_t depth);
    void placeCellViews();
    void layOut();
    void fillClipView();
    const std::vector<double>& rowTops() const;
    double top(std::int64_t row) const;
    void scroll(std::int64_t row, double share, bool animated);
    void drawRow(Canvas& canvas, std::int64_t row) const;

    std::weak_ptr<NSTableViewDataSource> dataSource_;
    std::weak_ptr<NSTableViewDelegate> delegate_;
    ObserverList<NSTableViewObserver> observers_;
    std::vector<std::shared_ptr<NSTableColumn>> columns_;
    /// The cell views that have been made, by row, one for each column.
    CellViews cells_;
    std::optional<SortOrder> sortOrder_;
    IndexSet selection_;
    std::int64_t rowCount_ = 0;
    std::int64_t clickedRow_ = -1;
    std::int64_t updateDepth_ = 0;
    double rowHeight_ = 24;
    /// Where each row begins and the last one ends, when the delegate gives heights; found when
    /// asked.
    mutable std::vector<double> rowTops_;
};

inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::effectNone{0x0};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::effectFade{0x1};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::effectGap{0x2};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::slideUp{0x10};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::slideDown{0x20};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::slideLeft{0x30};
inline constexpr NSTableView::AnimationOptions NSTableView::AnimationOptions::slideRight{0x40};

} // namespace zorvan
