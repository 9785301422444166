#pragma once

#include <zorvan/interface/NSOutlineView.h>
#include <zorvan/interface/NSTableViewObserver.h>

namespace zorvan {

/// Is told of each change of an outline once the outline has made it. Rows that come into sight or
/// go with an expansion are told of in this way alone.
class NSOutlineViewObserver : public NSTableViewObserver {
public:
    /// The item, or the root for null, was expanded; with `isDeep` all that is below it too.
    virtual void itemExpanded(const NSOutlineView::Item& item, bool isDeep);
    /// The item was collapsed.
    virtual void itemCollapsed(const NSOutlineView::Item& item);
};

} // namespace zorvan
