#include <zorvan/interface/NSTableViewObserver.h>

namespace zorvan {

void NSTableViewObserver::rowsInserted(const IndexSet&, NSTableView::AnimationOptions) {}
void NSTableViewObserver::rowsRemoved(const IndexSet&, NSTableView::AnimationOptions) {}
void NSTableViewObserver::rowMoved(std::int64_t, std::int64_t) {}

void NSTableViewObserver::rowsMoved(const IndexSet& from, std::int64_t to) {
    std::int64_t fromBefore = 0, fromAfter = 0;
    for (const std::int64_t row : from) {
        if (row < to)
            rowMoved(row - fromBefore++, to - 1);
        else
            rowMoved(row, to + fromAfter++);
    }
}

void NSTableViewObserver::cellsReloaded(const IndexSet&, const IndexSet&) {}
void NSTableViewObserver::rowHeightsDidChange(const IndexSet&) {}
void NSTableViewObserver::columnInserted(std::int64_t) {}
void NSTableViewObserver::columnRemoved(std::int64_t) {}
void NSTableViewObserver::columnDidChange(std::int64_t) {}
void NSTableViewObserver::scrolledTo(std::int64_t) {}

} // namespace zorvan
