#pragma once

#include <zorvan/collections/IndexPath.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/SelectableArrayEdition.h>
#include <zorvan/interface/NSCollectionViewLayout.h>
#include <zorvan/interface/NSNib.h>
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
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class NSCollectionView;
class NSCollectionViewObserver;

/// Gives a collection view its items. What is not overridden is empty, absent, false, or does
/// nothing.
class NSCollectionViewDataSource {
public:
    virtual ~NSCollectionViewDataSource() = default;
    /// One unless overridden.
    virtual std::int64_t numberOfSections(const NSCollectionView& view) const;
    /// How many items a section has; below 0 counts as 0.
    virtual std::int64_t numberOfItems(const NSCollectionView& view,
                                       std::int64_t section) const = 0;
    /// What is shown of an item that has no view, and what a screen reader says.
    virtual std::string text(const NSCollectionView& view, IndexPath item) const;
    /// A new view that shows an item; null for none.
    virtual std::shared_ptr<NSView> viewForItem(NSCollectionView& view, IndexPath item);
    /// What a drag of the item carries out of the window, such as a file; absent when it stays.
    virtual std::optional<URL> draggedURL(const NSCollectionView& view, IndexPath item) const;
    /// Whether a person may drag the item to another place of the view.
    virtual bool isMovable(const NSCollectionView& view, IndexPath item) const;
    /// A person has dragged movable items before the one at `before`, which may be the end of its
    /// section: move what they show, and tell the view.
    virtual void itemsDragged(NSCollectionView& view, const std::set<IndexPath>& items,
                              IndexPath before);
    /// Whether files, or other addresses, from elsewhere may be dropped between the items.
    virtual bool acceptsDrop(const NSCollectionView& view, const std::vector<URL>& urls) const;
    /// They were dropped before the item at `before`, which may be the end of its section.
    virtual void urlsDropped(NSCollectionView& view, const std::vector<URL>& urls,
                             IndexPath before);
    /// A person opens the item, by a double click or with Enter.
    virtual void itemOpened(NSCollectionView& view, IndexPath item);
};

/// Items in sections, placed by a layout.
///
/// It knows how many items each section has and which are selected. Changes come in batches: within
/// `performBatchUpdates`, deletions and the origins of moves count positions before the batch, and
/// insertions and the destinations of moves positions after it, whatever the order of the calls. A
/// batch that ends with another number of items than the data source has stops the program, as does
/// a path that is none. A change outside a batch is a batch of its own. Main thread only.
class NSCollectionView : public NSView {
public:
    /// Without data source, layout and items.
    static std::shared_ptr<NSCollectionView> create(const CGRect& frame = {});
    /// For `create`.
    using NSView::NSView;

    bool isFlipped() const noexcept override { return true; }
    bool acceptsFirstResponder() const override { return true; }
    void draw(Canvas& canvas) const override;
    void setFrame(const CGRect& frame) override;

    /// What a batch changes.
    struct Updates {
        /// Positions before the batch.
        /// @{
        std::set<IndexPath> deleted = {};
        std::set<IndexPath> reloaded = {};
        /// @}
        /// Positions after it.
        std::set<IndexPath> inserted = {};
        /// From a position before the batch to one after it.
        std::vector<std::pair<IndexPath, IndexPath>> moved = {};

        friend bool operator==(const Updates&, const Updates&) = default;
    };

    /// Posted by the collection view when its selection has changed.
    static constexpr NameLiteral selectionDidChangeNotification =
        "NSCollectionViewSelectionDidChangeNotification";

    /// Whoever shows the collection view, and tests. Not kept alive.
    using NSView::addObserver;
    /// Told of what changes in the items. Not kept alive.
    void addObserver(const std::shared_ptr<NSCollectionViewObserver>& observer) {
        observers_.add(observer);
    }

    /// Null when there is none, or it has gone.
    std::shared_ptr<NSCollectionViewDataSource> dataSource() const noexcept {
        return dataSource_.lock();
    }
    /// Not kept alive. Reloads.
    void setDataSource(const std::shared_ptr<NSCollectionViewDataSource>& source);
    /// Takes the numbers of items from the data source and forgets every view. What is no item any
    /// more is not selected any more.
    void reloadData();
    /// As the data source said at the last reload.
    std::int64_t numberOfSections() const noexcept {
        return static_cast<std::int64_t>(itemCounts_.size());
    }
    /// 0 for a section that does not exist.
    std::int64_t numberOfItems(std::int64_t inSection) const noexcept;

    /// Where the items stand; null, as at first, places none.
    /// @{
    const std::shared_ptr<NSCollectionViewLayout>& collectionViewLayout() const noexcept {
        return layout_;
    }
    void setCollectionViewLayout(std::shared_ptr<NSCollectionViewLayout> layout);
    /// @}
    /// The layout when it is of that kind, else null.
    std::shared_ptr<NSCollectionViewFlowLayout> collectionViewFlowLayout() const {
        return std::dynamic_pointer_cast<NSCollectionViewFlowLayout>(layout_);
    }
    /// The same for a grid.
    std::shared_ptr<NSCollectionViewGridLayout> collectionViewGridLayout() const {
        return std::dynamic_pointer_cast<NSCollectionViewGridLayout>(layout_);
    }
    /// The items of the layout in the rectangle, in its order; none without a layout.
    std::vector<IndexPath> indexPathsForItems(const CGRect& in) const;

    /// The kinds of supplementary view.
    static constexpr NameLiteral sectionHeader = "SectionHeader";
    /// Below a section.
    static constexpr NameLiteral sectionFooter = "SectionFooter";

    /// The view that the data source has made for an item; null when there is none, and when it
    /// has not been made and is not to be. It is asked for again after a reload of the item.
    std::shared_ptr<NSView> view(IndexPath forItem, bool makeIfNecessary);
    /// Forgets the views of all other items; whoever shows the collection view calls it for those
    /// that are out of sight.
    void keepViews(const std::set<IndexPath>& ofItems);

    /// Keeps under an identifier the nib that its items are described by, for whoever wants to ask;
    /// of an identifier given twice, the later. The items are made by the data source.
    void registerNib(NSNib nib, const std::string& forItemWithIdentifier);
    /// The same for the views of sections.
    void registerNib(NSNib nib, std::string_view forSupplementaryViewOfKind,
                     const std::string& withIdentifier);
    /// What was registered; null when nothing was.
    const NSNib* nib(const std::string& forItemWithIdentifier) const;
    /// The same for the views of sections.
    const NSNib* nib(std::string_view forSupplementaryViewOfKind,
                     const std::string& withIdentifier) const;

    /// Items of the nibs of these names.
    struct Cells {
        /// Null for the main bundle.
        std::shared_ptr<const NSBundle> bundle = {};
        /// Identifiers, and names of nibs.
        Required<std::vector<std::string>> cellIdentifiers;
    };
    /// Headers of the nibs of these names.
    struct Headers {
        /// Null for the main bundle.
        std::shared_ptr<const NSBundle> bundle = {};
        /// Identifiers, and names of nibs.
        Required<std::vector<std::string>> headerIdentifiers;
    };
    /// Footers of the nibs of these names.
    struct Footers {
        /// Null for the main bundle.
        std::shared_ptr<const NSBundle> bundle = {};
        /// Identifiers, and names of nibs.
        Required<std::vector<std::string>> footerIdentifiers;
    };
    /// Registers, for each identifier, the nib of that name from the bundle.
    /// @{
    void register_(const Cells& items);
    void register_(const Headers& headers);
    void register_(const Footers& footers);
    /// @}

    /// The selected items.
    const std::set<IndexPath>& selectionIndexPaths() const noexcept { return selection_; }
    /// Paths that are none are passed over. A selection that stays the same is not announced.
    void setSelectionIndexPaths(std::set<IndexPath> paths);

    /// Items have come, and stand at these positions once the batch is over.
    void insertItems(const std::set<IndexPath>& at);
    /// The items at these positions, counted before the batch, have gone.
    void deleteItems(const std::set<IndexPath>& at);
    /// The items at these positions, counted before the batch, show something else: their views are
    /// made anew.
    void reloadItems(const std::set<IndexPath>& at);
    /// The item at one position, counted before the batch, stands at another after it.
    void moveItem(IndexPath at, IndexPath to);
    /// Reads the number of items of these sections anew; their selection is dropped.
    void reloadSections(const IndexSet& sections);
    /// Runs the updates as one batch, then the handler. What the updates throw passes through, and
    /// what they had asked for is forgotten.
    void performBatchUpdates(const std::function<void()>& updates,
                             const std::function<void()>& completionHandler = {});

    /// Makes changes that are told to the observer as animated ones. The view's own state changes
    /// at once.
    class Animator {
    public:
        /// See `animator`.
        explicit Animator(std::shared_ptr<NSCollectionView> view) : view_(std::move(view)) {}
        /// As that of the view, told as animated.
        void performBatchUpdates(const std::function<void()>& updates,
                                 const std::function<void()>& completionHandler = {});

    private:
        std::shared_ptr<NSCollectionView> view_;
    };
    /// Makes changes of this view.
    Animator animator() {
        return Animator(std::static_pointer_cast<NSCollectionView>(shared_from_this()));
    }

    /// Shows an edition of a `SelectableArray`, in section 0.
    void reloadEditedData(const SelectableArrayEdition& edition);

private:
    bool contains(IndexPath path) const noexcept;
    template <class Change>
    void addToBatch(Change change);
    void apply(const Updates& batch);
    void count(const Updates& batch);
    void checkAgainstSource() const;
    template <class Place>
    void carryViews(Place place);
    void forgetViews(const std::function<bool(IndexPath)>& which);
    void announceSelection();
    void layOut();
    void placeViews();

    std::weak_ptr<NSCollectionViewDataSource> dataSource_;
    ObserverList<NSCollectionViewObserver> observers_;
    std::shared_ptr<NSCollectionViewLayout> layout_;
    std::vector<std::int64_t> itemCounts_;
    std::set<IndexPath> selection_;
    /// By kind, which is empty for items, and identifier.
    std::map<std::pair<std::string, std::string>, NSNib> nibs_;
    std::map<IndexPath, std::shared_ptr<NSView>> views_;
    /// What the batch that is open has gathered so far.
    Updates batch_;
    std::int64_t batchDepth_ = 0;
    bool isBatchAnimated_ = false;
};

} // namespace zorvan
