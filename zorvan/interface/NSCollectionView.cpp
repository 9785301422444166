#include <zorvan/interface/NSCollectionView.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>

namespace zorvan {

namespace {

std::string text(IndexPath path) {
    return "(" + std::to_string(path.item) + ", " + std::to_string(path.section) + ")";
}

std::string text(const std::set<IndexPath>& paths) {
    std::string joined;
    for (const IndexPath path : paths)
        joined += (joined.empty() ? "" : ", ") + text(path);
    return joined;
}

/// The items of these paths that lie in a section.
IndexSet items(const std::set<IndexPath>& paths, std::int64_t section) {
    IndexSet result;
    for (auto path = paths.lower_bound({0, section});
         path != paths.end() && path->section == section; ++path)
        result.insert(path->item);
    return result;
}

std::set<IndexPath> paths(const IndexSet& items) {
    std::set<IndexPath> result;
    for (const std::int64_t item : items)
        result.insert(result.end(), {item, 0});
    return result;
}

} // namespace

std::int64_t NSCollectionViewDataSource::numberOfSections(const NSCollectionView&) const {
    return 1;
}

void NSCollectionView::setDataSource(const std::shared_ptr<NSCollectionViewDataSource>& source) {
    dataSource_ = source;
    reloadData();
}

void NSCollectionView::reloadData() {
    itemCounts_.clear();
    if (const auto source = dataSource_.lock())
        for (std::int64_t section = 0; section < source->numberOfSections(*this); ++section)
            itemCounts_.push_back(std::max<std::int64_t>(source->numberOfItems(*this, section), 0));
    std::erase_if(selection_, [this](IndexPath path) { return !contains(path); });
    layOut();
    note("reloadData");
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
    NSView::setFrame(frame);
    layOut();
}

void NSCollectionView::layOut() {
    if (layout_)
        layout_->prepare(itemCounts_, frame().width());
}

void NSCollectionView::setCollectionViewLayout(std::shared_ptr<NSCollectionViewLayout> layout) {
    layout_ = std::move(layout);
    layOut();
}

std::shared_ptr<NSCollectionViewFlowLayout> NSCollectionView::collectionViewFlowLayout() const {
    return std::dynamic_pointer_cast<NSCollectionViewFlowLayout>(layout_);
}

std::shared_ptr<NSCollectionViewGridLayout> NSCollectionView::collectionViewGridLayout() const {
    return std::dynamic_pointer_cast<NSCollectionViewGridLayout>(layout_);
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

// Nibs

void NSCollectionView::registerNib(NSNib nib, const std::string& forItemWithIdentifier) {
    registerNib(std::move(nib), "", forItemWithIdentifier);
}

void NSCollectionView::registerNib(NSNib nib, std::string_view forSupplementaryViewOfKind,
                                   const std::string& withIdentifier) {
    std::string arguments = nib.name;
    if (!forSupplementaryViewOfKind.empty())
        arguments.append(", ").append(forSupplementaryViewOfKind);
    note("registerNib", arguments + ", " + withIdentifier);
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
    note("setSelectionIndexPaths", text(paths));
    std::erase_if(paths, [this](IndexPath path) { return !contains(path); });
    selection_ = std::move(paths);
}

void NSCollectionView::performBatchUpdates(const std::function<void()>& updates,
                                           const std::function<void()>& completionHandler) {
    if (batchDepth_ == 0)
        note("performBatchUpdates");
    {
        // Closed by a guard: the updates may throw.
        const struct Guard {
            std::int64_t& depth;
            explicit Guard(std::int64_t& batchDepth) : depth(batchDepth) { ++depth; }
            ~Guard() { --depth; }
        } guard(batchDepth_);
        updates();
    }
    if (batchDepth_ == 0)
        apply(std::exchange(batch_, {}));
    if (completionHandler)
        completionHandler();
}

void NSCollectionView::Animator::performBatchUpdates(
    const std::function<void()>& updates, const std::function<void()>& completionHandler) {
    view_->note("animator");
    view_->performBatchUpdates(updates, completionHandler);
}

void NSCollectionView::insertItems(const std::set<IndexPath>& at) {
    performBatchUpdates([&] {
        batch_.inserted.insert(at.begin(), at.end());
        note("insertItems", text(at));
    });
}

void NSCollectionView::deleteItems(const std::set<IndexPath>& at) {
    performBatchUpdates([&] {
        batch_.deleted.insert(at.begin(), at.end());
        note("deleteItems", text(at));
    });
}

void NSCollectionView::reloadItems(const std::set<IndexPath>& at) {
    performBatchUpdates([&] { note("reloadItems", text(at)); });
}

void NSCollectionView::moveItem(IndexPath at, IndexPath to) {
    performBatchUpdates([&] {
        batch_.moved.emplace_back(at, to);
        note("moveItem", text(at) + ", " + text(to));
    });
}

void NSCollectionView::reloadSections(const IndexSet& sections) {
    const auto source = dataSource_.lock();
    for (const std::int64_t section : sections) {
        if (section < numberOfSections())
            itemCounts_[static_cast<std::size_t>(section)] =
                source ? std::max<std::int64_t>(source->numberOfItems(*this, section), 0) : 0;
        std::erase_if(selection_, [section](IndexPath path) { return path.section == section; });
    }
    layOut();
    note("reloadSections", sections.description());
}

void NSCollectionView::apply(const Batch& batch) {
    Batch parts = batch;
    for (const auto& [from, to] : batch.moved) {
        parts.deleted.insert(from);
        parts.inserted.insert(to);
    }
    const auto isNone = [this](IndexPath path) { return !contains(path); };
    if (std::any_of(parts.deleted.begin(), parts.deleted.end(), isNone))
        fatalError("A path lies outside the collection view.");

    std::set<IndexPath> selection;
    for (const auto& [from, to] : batch.moved)
        if (selection_.contains(from))
            selection.insert(to);
    for (std::int64_t section = 0; section < numberOfSections(); ++section)
        carrySelection(parts, section, selection);
    for (const IndexPath path : parts.deleted)
        --itemCounts_[static_cast<std::size_t>(path.section)];
    for (const IndexPath path : parts.inserted)
        if (path.section >= 0 && path.section < numberOfSections())
            ++itemCounts_[static_cast<std::size_t>(path.section)];
    if (std::any_of(parts.inserted.begin(), parts.inserted.end(), isNone))
        fatalError("A path lies outside the collection view.");
    selection_ = std::move(selection);
    checkAgainstSource();
    layOut();
}

void NSCollectionView::carrySelection(const Batch& batch, std::int64_t section,
                                      std::set<IndexPath>& selection) const {
    IndexSet kept = items(selection_, section).afterRemoving(items(batch.deleted, section));
    const IndexSet inserted = items(batch.inserted, section);
    for (const IndexSet::Range range : inserted.ranges())
        kept.shift(range.lower, range.count());
    for (const std::int64_t item : kept)
        selection.insert({item, section});
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
    using Edition = SelectableArrayEdition;
    if (const auto* insert = edition.as<Edition::Insert>()) {
        const IndexSet at({.loc = insert->at, .len = insert->count});
        animator().performBatchUpdates([&] { insertItems(paths(at)); });
    } else if (const auto* replace = edition.as<Edition::Replace>()) {
        animator().performBatchUpdates([&] { reloadItems({{replace->at, 0}}); });
    } else if (const auto* remove = edition.as<Edition::Remove>()) {
        animator().performBatchUpdates([&] { deleteItems(paths(remove->at)); });
    } else if (const auto* move = edition.as<Edition::Move>()) {
        std::int64_t place = move->to - move->from.count(IndexSet::Range{0, move->to});
        animator().performBatchUpdates([&] {
            for (const std::int64_t item : move->from)
                moveItem({item, 0}, {place++, 0});
        });
    } else if (const auto* select = edition.as<Edition::Select>()) {
        setSelectionIndexPaths(paths(select->selection));
    } else if (const auto* reload = edition.as<Edition::Reload>()) {
        reloadSections({0});
        setSelectionIndexPaths(paths(reload->selection));
    }
}

} // namespace zorvan
