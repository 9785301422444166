#pragma once

#include <zorvan/interface/NSCollectionView.h>

namespace zorvan {

/// Is told of each change of a collection view once the view has made it: by whoever shows the
/// view, or a test. Each function does nothing unless overridden.
class NSCollectionViewObserver {
public:
    virtual ~NSCollectionViewObserver() = default;

    /// All that one batch has changed.
    virtual void itemsUpdated(const NSCollectionView::Updates& updates, bool isAnimated);
    /// The numbers of items of these sections were read anew.
    virtual void sectionsReloaded(const IndexSet& sections);
    /// Everything may be another, the number of sections too.
    virtual void reloaded() {}
    /// Another selection.
    virtual void selectionDidChange() {}
    /// There is another layout, or another width to lay out.
    virtual void layoutDidChange() {}
};

} // namespace zorvan
