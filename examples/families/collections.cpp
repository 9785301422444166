// A list that is filtered and sorted, and keeps its selection.
// Link Zorvan::Collections.

#include <zorvan/collections.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto photos =
        ManagedList<std::string>::create({"lake 10.jpg", "notes.txt", "lake 9.jpg"});
    photos->setFilter([](const std::string& name) { return name.ends_with(".jpg"); });
    photos->setSelection({1}); // lake 9.jpg
    photos->sort(std::greater<>());
    photos->setFilter({}); // all of them, and what was selected still is
    for (std::int64_t row = 0; row < photos->count(); ++row)
        std::cout << (photos->selection().contains(row) ? "* " : "  ")
                  << *safe(photos->items(), row) << '\n';
    std::cout << IndexSet({.i1 = 0, .i2 = 999'999}).subtracting({7}).description() << '\n';
}
