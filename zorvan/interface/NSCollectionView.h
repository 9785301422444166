#pragma once

#include <zorvan/collections/IndexPath.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/SelectableArrayEdition.h>
#include <zorvan/interface/NSCollectionViewLayout.h>
#include <zorvan/interface/NSNib.h>
#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/foundation/Required.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class NSCollectionView;

/// Gives a collection view its items.
class NSCollectionViewDataSource {
public:
    virtual ~NSCollectionViewDataSource() = default;
    /// One unless overridden.
    virtual std::int64_t numberOfSections(const NSCollectionView& view) const;
    virtual std::int64_t numberOfItems(const NSCollectionView& view,
                                       std::int64_t section) const = 0;
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
    static std::shared_ptr<NSCollectionView> create(const CGRect& frame = {}) {
        return std::make_shared<NSCollectionView>(Key{}, frame);
    }
    using NSView::NSView;

    bool isFlipped() const noexcept override { return true; }
    void draw(Canvas& canvas) const override;
    void setFrame(const CGRect& frame) override;

    /// Not kept alive. Reloads.
    void setDataSource(const std::shared_ptr<NSCollectionViewDataSource>& source);
    void reloadData();
    std::int64_t numberOfSections() const noexcept {
        return static_cast<std::int64_t>(itemCounts_.size());
    }
    /// 0 for a section that does not exist.
    std::int64_t numberOfItems(std::int64_t inSection) const noexcept;

    const std::shared_ptr<NSCollectionViewLayout>& collectionViewLayout() const noexcept {
        return layout_;
    }
    void setCollectionViewLayout(std::shared_ptr<NSCollectionViewLayout> layout);
    /// The layout when it is of that kind, else null.
    std::shared_ptr<NSCollectionViewFlowLayout> collectionViewFlowLayout() const;
    std::shared_ptr<NSCollectionViewGridLayout> collectionViewGridLayout() const;
    /// The items of the layout in the rectangle, in its order; none without a layout.
    std::vector<IndexPath> indexPathsForItems(const CGRect& in) const;

    /// The kinds of supplementary view.
    static constexpr std::string_view sectionHeader = "SectionHeader";
    static constexpr std::string_view sectionFooter = "SectionFooter";

    /// Keeps what the items of an identifier are made from; of an identifier given twice, the
    /// later.
    void registerNib(NSNib nib, const std::string& forItemWithIdentifier);
    void registerNib(NSNib nib, std::string_view forSupplementaryViewOfKind,
                     const std::string& withIdentifier);
    /// What was registered; null when nothing was.
    const NSNib* nib(const std::string& forItemWithIdentifier) const;
    const NSNib* nib(std::string_view forSupplementaryViewOfKind,
                     const std::string& withIdentifier) const;

    struct Cells {
        std::shared_ptr<const NSBundle> bundle = {};
        Required<std::vector<std::string>> cellIdentifiers;
    };
    struct Headers {
        std::shared_ptr<const NSBundle> bundle = {};
        Required<std::vector<std::string>> headerIdentifiers;
    };
    struct Footers {
        std::shared_ptr<const NSBundle> bundle = {};
        Required<std::vector<std::string>> footerIdentifiers;
    };
    /// Registers, for each identifier, the nib of that name from the bundle.
    void register_(const Cells& items);
    void register_(const Headers& headers);
    void register_(const Footers& footers);

    const std::set<IndexPath>& selectionIndexPaths() const noexcept { return selection_; }
    /// Paths that are none are passed over.
    void setSelectionIndexPaths(std::set<IndexPath> paths);

    void insertItems(const std::set<IndexPath>& at);
    void deleteItems(const std::set<IndexPath>& at);
    void reloadItems(const std::set<IndexPath>& at);
    void moveItem(IndexPath at, IndexPath to);
    /// Reads the number of items of these sections anew; their selection is dropped.
    void reloadSections(const IndexSet& sections);
    /// Runs the updates as one batch, then the handler.
    void performBatchUpdates(const std::function<void()>& updates,
                             const std::function<void()>& completionHandler = {});

    /// Makes changes that a host shows as an animation. Without a host they take effect at once;
    /// the observer is told that they were animated.
    class Animator {
    public:
        explicit Animator(std::shared_ptr<NSCollectionView> view) : view_(std::move(view)) {}
        void performBatchUpdates(const std::function<void()>& updates,
                                 const std::function<void()>& completionHandler = {});

    private:
        std::shared_ptr<NSCollectionView> view_;
    };
    Animator animator() {
        return Animator(std::static_pointer_cast<NSCollectionView>(shared_from_this()));
    }

    /// Shows an edition of a `SelectableArray`, in section 0.
    void reloadEditedData(const SelectableArrayEdition& edition);

private:
    /// What a batch has gathered so far.
    struct Batch {
        std::set<IndexPath> deleted, inserted;
        std::vector<std::pair<IndexPath, IndexPath>> moved;
    };

    bool contains(IndexPath path) const noexcept;
    void apply(const Batch& batch);
    void checkAgainstSource() const;
    /// Where the items that were neither deleted nor moved stand after the batch, in each section
    /// the selected ones only.
    void carrySelection(const Batch& batch, std::int64_t section,
                        std::set<IndexPath>& selection) const;
    void layOut();

    std::weak_ptr<NSCollectionViewDataSource> dataSource_;
    std::shared_ptr<NSCollectionViewLayout> layout_;
    std::vector<std::int64_t> itemCounts_;
    std::set<IndexPath> selection_;
    /// By kind, which is empty for items, and identifier.
    std::map<std::pair<std::string, std::string>, NSNib> nibs_;
    Batch batch_;
    std::int64_t batchDepth_ = 0;
};

} // namespace zorvan
