#pragma once

#include <zorvan/collections/IndexSet.h>

#include <QItemSelection>
#include <algorithm>
#include <vector>

namespace zorvan::internal {

/// The rows of what is selected, which stands below no other item.
inline IndexSet rowsOf(const QItemSelection& selection) {
    std::vector<IndexSet::Range> ranges;
    for (const QItemSelectionRange& range : selection)
        if (range.isValid())
            ranges.push_back({range.top(), range.bottom() + 1});
    // In ascending order, each finds its place at the end.
    std::sort(ranges.begin(), ranges.end(),
              [](const auto& a, const auto& b) { return a.lower < b.lower; });
    IndexSet rows;
    for (const IndexSet::Range range : ranges)
        rows.insert(range);
    return rows;
}

/// All cells of these rows, as far as there are any.
inline QItemSelection wholeRows(const QAbstractItemModel& model, const IndexSet& rows) {
    QItemSelection selection;
    const int last = model.columnCount() - 1;
    const IndexSet there = rows.intersection(IndexSet(IndexSet::Range{0, model.rowCount()}));
    for (const IndexSet::Range range : there.ranges())
        if (last >= 0)
            selection.append(
                QItemSelectionRange(model.index(static_cast<int>(range.lower), 0),
                                    model.index(static_cast<int>(range.upper) - 1, last)));
    return selection;
}

} // namespace zorvan::internal
