#include <zorvan/interface/NSCollectionView.h>

#include <zorvan/interface/NSCollectionViewObserver.h>
#include <zorvan/interface/internal/ItemChange.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <utility>

namespace zorvan {

std::shared_ptr<NSCollectionView> NSCollectionView::create(const CGRect& frame) {
    return std::make_shared<NSCollectionView>(Key{}, frame);
}

std::int64_t NSCollectionViewDataSource::numberOfSections(const NSCollectionView&) const {
    return 1;
}

std::string NSCollectionViewDataSource::text(const NSCollectionView&, IndexPath) const {
    return {};
}

std::shared_ptr<NSView> NSCollectionViewDataSource::viewForItem(NSCollectionView&, IndexPath) {
    return nullptr;
}

std::optional<URL> NSCollectionViewDataSource::draggedURL(const NSCollectionView&,
                                                          IndexPath) const {
    return std::nullopt;
}

bool NSCollectionViewDataSource::isMovable(const NSCollectionView&, IndexPath) const {
    return false;
}

void NSCollectionViewDataSource::itemsDragged(NSCollectionView&, const std::set<IndexPath>&,
                                              IndexPath) {}

bool NSCollectionViewDataSource::acceptsDrop(const NSCollectionView&,
                                             const std::vector<URL>&) const {
    return false;
}

void NSCollectionViewDataSource::urlsDropped(NSCollectionView&, const std::vector<URL>&,
                                             IndexPath) {}

void NSCollectionViewDataSource::itemOpened(NSCollectionView&, IndexPath) {}

void NSCollectionViewObserver::itemsUpdated(const NSCollectionView::Updates&, bool) {}

void NSCollectionViewObserver::sectionsReloaded(const IndexSet&) {}

void NSCollectionView::setDataSource(const std::shared_ptr<NSCollectionViewDataSource>& source) {
    dataSource_ = source;
    reloadData();
}

void NSCollectionView::reloadData() {
    itemCounts_.clear();
    if (const auto source = dataSource_.lock())
        for (std::int64_t section = 0; section < source->numberOfSections(*this); ++section)
            itemCounts_.push_back(std::max<std::int64_t>(source->numberOfItems(*this, section), 0));
    const auto isNone = [this](IndexPath path) { return !contains(path); };
    const bool isOther = std::erase_if(selection_, isNone) > 0;
    forgetViews([](IndexPath) { return true; });
    layOut();
    observers_.tell(&NSCollectionViewObserver::reloaded);
    if (isOther)
        announceSelection();
}

std::int64_t NSCollectionView::numberOfItems(std::int64_t inSection) const noexcept {
    return inSection >= 0 && inSection < numberOfSections()
               ? itemCounts_[static_cast<std::size_t>(inSection)]
               : 0;
}

bool NSCollectionView::contains(IndexPath path) const noexcept {
    return path.item >= 0 && path.item < numberOfItems(path.section);
}

// Layout

void NSCollectionView::setFrame(const CGRect& frame) {
    const double before = this->frame().width();
    NSView::setFrame(frame);
    if (this->frame().width() == before)
        return;
    layOut();
    observers_.tell(&NSCollectionViewObserver::layoutDidChange);
}

void NSCollectionView::layOut() {
    if (layout_)
        layout_->prepare(itemCounts_, frame().width());
    placeViews();
    setNeedsDisplay(true);
}

/// Whoever is told of a frame may change the collection view, so that a copy is walked.
void NSCollectionView::placeViews() {
    for (const auto& [path, placed] : std::map(views_))
        if (layout_ && view(path, false) == placed)
            placed->setFrame(layout_->frameOfItem(path));
}

void NSCollectionView::setCollectionViewLayout(std::shared_ptr<NSCollectionViewLayout> layout) {
    layout_ = std::move(layout);
    layOut();
    observers_.tell(&NSCollectionViewObserver::layoutDidChange);
}

std::vector<IndexPath> NSCollectionView::indexPathsForItems(const CGRect& in) const {
    std::vector<IndexPath> found;
    if (!layout_)
        return found;
    for (const auto& element : layout_->layoutAttributesForElements(in))
        if (element.indexPath && element.frame.intersects(in))
            found.push_back(*element.indexPath);
    return found;
}

void NSCollectionView::draw(Canvas& canvas) const {
    constexpr Canvas::Colour plain{222, 224, 226}, selected{0, 99, 225};
    if (!layout_)
        return;
    for (const auto& element : layout_->layoutAttributesForElements(canvas.clip()))
        if (element.indexPath)
            canvas.fill(element.frame, selection_.contains(*element.indexPath) ? selected : plain);
}

// Views of items

std::shared_ptr<NSView> NSCollectionView::view(IndexPath forItem, bool makeIfNecessary) {
    const auto made = views_.find(forItem);
    if (made != views_.end())
        return made->second;
    const auto source = dataSource();
    if (!makeIfNecessary || !source || !contains(forItem))
        return nullptr;
    const std::shared_ptr<NSView> view = source->viewForItem(*this, forItem);
    if (view && layout_)
        view->setFrame(layout_->frameOfItem(forItem));
    // The data source, or who is told of the frame, may have changed the collection view meanwhile.
    if (!view || !contains(forItem))
        return nullptr;
    views_[forItem] = view;
    addSubview(view);
    return view;
}

void NSCollectionView::keepViews(const std::set<IndexPath>& ofItems) {
    forgetViews([&ofItems](IndexPath path) { return !ofItems.contains(path); });
}

void NSCollectionView::forgetViews(const std::function<bool(IndexPath)>& which) {
    carryViews(
        [&which](IndexPath path) { return which(path) ? std::nullopt : std::optional(path); });
}

/// Those that are told of leaving may ask for other views, so that they leave last.
template <class Place>
void NSCollectionView::carryViews(Place place) {
    std::vector<std::shared_ptr<NSView>> gone;
    for (auto& [path, view] : std::exchange(views_, {})) {
        const std::optional<IndexPath> now = place(path);
        if (now)
            views_.emplace(*now, std::move(view));
        else
            gone.push_back(std::move(view));
    }
    for (const auto& view : gone)
        view->removeFromSuperview();
}

// Nibs

void NSCollectionView::registerNib(NSNib nib, const std::string& forItemWithIdentifier) {
    registerNib(std::move(nib), "", forItemWithIdentifier);
}

void NSCollectionView::registerNib(NSNib nib, std::string_view forSupplementaryViewOfKind,
                                   const std::string& withIdentifier) {
    nibs_.insert_or_assign({std::string(forSupplementaryViewOfKind), withIdentifier},
                           std::move(nib));
}

const NSNib* NSCollectionView::nib(const std::string& forItemWithIdentifier) const {
    return nib("", forItemWithIdentifier);
}

const NSNib* NSCollectionView::nib(std::string_view forSupplementaryViewOfKind,
                                   const std::string& withIdentifier) const {
    const auto found = nibs_.find({std::string(forSupplementaryViewOfKind), withIdentifier});
    return found == nibs_.end() ? nullptr : &found->second;
}

void NSCollectionView::register_(const Cells& items) {
    for (const std::string& identifier : items.cellIdentifiers.value)
        registerNib({identifier, items.bundle}, identifier);
}

void NSCollectionView::register_(const Headers& headers) {
    for (const std::string& identifier : headers.headerIdentifiers.value)
        registerNib({identifier, headers.bundle}, sectionHeader, identifier);
}

void NSCollectionView::register_(const Footers& footers) {
    for (const std::string& identifier : footers.footerIdentifiers.value)
        registerNib({identifier, footers.bundle}, sectionFooter, identifier);
}

// Changes

void NSCollectionView::setSelectionIndexPaths(std::set<IndexPath> paths) {
    std::erase_if(paths, [this](IndexPath path) { return !contains(path); });
    if (paths == selection_)
        return;
    selection_ = std::move(paths);
    announceSelection();
}

void NSCollectionView::announceSelection() {
    setNeedsDisplay(true);
    observers_.tell(&NSCollectionViewObserver::selectionDidChange);
    // A view on the stack has no one to be announced to.
    if (const std::shared_ptr<NSView> self = weak_from_this().lock())
        NSNotificationCenter::defaultCenter()->post(
            NSNotificationName(selectionDidChangeNotification), self);
}

namespace {

void gather(NSCollectionView::Updates&& inner, NSCollectionView::Updates& outer) {
    outer.deleted.merge(inner.deleted);
    outer.reloaded.merge(inner.reloaded);
    outer.inserted.merge(inner.inserted);
    outer.moved.insert(outer.moved.end(), inner.moved.begin(), inner.moved.end());
}

} // namespace

void NSCollectionView::performBatchUpdates(const std::function<void()>& updates,
                                           const std::function<void()>& completionHandler) {
    Updates around = std::exchange(batch_, {});
    ++batchDepth_;
    try {
        updates();
    } catch (...) {
        --batchDepth_;
        batch_ = std::move(around);
        throw;
    }
    gather(std::exchange(batch_, {}), around);
    if (--batchDepth_ == 0)
        apply(around);
    else
        batch_ = std::move(around);
    if (completionHandler)
        completionHandler();
}

void NSCollectionView::Animator::performBatchUpdates(
    const std::function<void()>& updates, const std::function<void()>& completionHandler) {
    const struct Guard {
        explicit Guard(bool& animated) : flag(animated), before(std::exchange(animated, true)) {}
        ~Guard() { flag = before; }
        bool& flag;
        bool before;
    } guard(view_->isBatchAnimated_);
    view_->performBatchUpdates(updates, completionHandler);
}

/// A change outside a batch is a batch of its own.
template <class Change>
void NSCollectionView::addToBatch(Change change) {
    if (batchDepth_ > 0)
        return change(batch_);
    Updates updates;
    change(updates);
    apply(updates);
}

void NSCollectionView::insertItems(const std::set<IndexPath>& at) {
    addToBatch([&](Updates& batch) { batch.inserted.insert(at.begin(), at.end()); });
}

void NSCollectionView::deleteItems(const std::set<IndexPath>& at) {
    addToBatch([&](Updates& batch) { batch.deleted.insert(at.begin(), at.end()); });
}

void NSCollectionView::reloadItems(const std::set<IndexPath>& at) {
    addToBatch([&](Updates& batch) { batch.reloaded.insert(at.begin(), at.end()); });
}

void NSCollectionView::moveItem(IndexPath at, IndexPath to) {
    addToBatch([&](Updates& batch) { batch.moved.emplace_back(at, to); });
}

void NSCollectionView::reloadSections(const IndexSet& sections) {
    const auto source = dataSource();
    for (const std::int64_t section :
         sections.intersection(IndexSet(IndexSet::Range{0, numberOfSections()})))
        itemCounts_[static_cast<std::size_t>(section)] =
            source ? std::max<std::int64_t>(source->numberOfItems(*this, section), 0) : 0;
    const auto isInThem = [&sections](IndexPath path) { return sections.contains(path.section); };
    const bool isOther = std::erase_if(selection_, isInThem) > 0;
    forgetViews(isInThem);
    layOut();
    observers_.tell(&NSCollectionViewObserver::sectionsReloaded, sections);
    if (isOther)
        announceSelection();
}

void NSCollectionView::apply(const Updates& batch) {
    count(batch);
    const internal::ItemChange change(batch);
    std::set<IndexPath> selection;
    for (const IndexPath path : selection_)
        if (const auto now = change.place(path))
            selection.insert(*now);
    const bool isOther = selection != selection_;
    selection_ = std::move(selection);
    checkAgainstSource();
    layOut();
    carryViews([&](IndexPath path) {
        return batch.reloaded.contains(path) ? std::nullopt : change.place(path);
    });
    placeViews();
    observers_.tell(&NSCollectionViewObserver::itemsUpdated, batch, isBatchAnimated_);
    if (isOther)
        announceSelection();
}

/// Every origin must be an item before, every destination one afterwards.
void NSCollectionView::count(const Updates& batch) {
    std::set<IndexPath> gone = batch.deleted, come = batch.inserted;
    for (const auto& [from, to] : batch.moved) {
        gone.insert(from);
        come.insert(to);
    }
    const auto isNone = [this](IndexPath path) { return !contains(path); };
    if (std::any_of(gone.begin(), gone.end(), isNone))
        fatalError("A path lies outside the collection view.");
    for (const IndexPath path : gone)
        --itemCounts_[static_cast<std::size_t>(path.section)];
    for (const IndexPath path : come)
        if (path.section >= 0 && path.section < numberOfSections())
            ++itemCounts_[static_cast<std::size_t>(path.section)];
    if (std::any_of(come.begin(), come.end(), isNone))
        fatalError("A path lies outside the collection view.");
}

void NSCollectionView::checkAgainstSource() const {
    const auto source = dataSource_.lock();
    for (std::int64_t section = 0; source && section < numberOfSections(); ++section) {
        const std::int64_t expected = source->numberOfItems(*this, section);
        if (expected != numberOfItems(section))
            fatalError("After its updates section " + std::to_string(section) +
                       " of a collection view has " + std::to_string(numberOfItems(section)) +
                       " items, but its data source has " + std::to_string(expected) + ".");
    }
}

void NSCollectionView::reloadEditedData(const SelectableArrayEdition& edition) {
    const auto keptAlive = weak_from_this().lock(); // whoever is told may let it go
    using Edition = SelectableArrayEdition;
    if (const auto* insert = edition.as<Edition::Insert>()) {
        const IndexSet at({.loc = insert->at, .len = insert->count});
        animator().performBatchUpdates([&] { insertItems(at.mapToIndexPaths()); });
    } else if (const auto* replace = edition.as<Edition::Replace>()) {
        animator().performBatchUpdates([&] { reloadItems({{replace->at, 0}}); });
    } else if (const auto* remove = edition.as<Edition::Remove>()) {
        animator().performBatchUpdates([&] { deleteItems(remove->at.mapToIndexPaths()); });
    } else if (const auto* move = edition.as<Edition::Move>()) {
        std::int64_t place = move->to - move->from.count(IndexSet::Range{0, move->to});
        animator().performBatchUpdates([&] {
            for (const std::int64_t item : move->from)
                moveItem({item, 0}, {place++, 0});
        });
    } else if (const auto* select = edition.as<Edition::Select>()) {
        setSelectionIndexPaths(select->selection.mapToIndexPaths());
    } else if (const auto* reload = edition.as<Edition::Reload>()) {
        reloadSections({0});
        setSelectionIndexPaths(reload->selection.mapToIndexPaths());
    }
}

} // namespace zorvan
