// A selection that survives changes of the list
//
// A million rows in one block cost one range.
//
// Link Zorvan::Collections.

#include <zorvan/collections/IndexSet.h>

#include <iostream>

using namespace zorvan;

int main() {
    IndexSet selection({.i1 = 2, .i2 = 5}); // both ends, as shift and a click give them
    selection.toggle(9);
    std::cout << selection.description() << ", " << selection.count() << " rows\n";

    // Rows 0 and 3 are removed; then row 4 is dragged to the top.
    selection = selection.afterRemoving({0, 3});
    std::cout << selection.description() << '\n';
    selection = selection.afterMoving({4}, 0);
    std::cout << selection.description() << '\n';

    const IndexSet all(IndexSet::Range{0, 1'000'000});
    const IndexSet others = all.subtracting(selection);
    std::cout << others.count() << " rows in " << others.ranges().size() << " ranges\n";
}
