// Undo on a list
//
// Every change of a selectable array runs through its handler, which is where to keep what was.
//
// Link Zorvan::Collections.

#include <zorvan/collections/SelectableArray.h>

#include <iostream>
#include <string>

using namespace zorvan;

using List = SelectableArray<std::string>;

void show(const List& list) {
    for (const auto& [isSelected, title] : list.entries())
        std::cout << (isSelected ? "[" + title + "] " : title + " ");
    std::cout << '\n';
}

int main() {
    const auto list = List::create();
    list->append({"Bach", "Chopin", "Haydn", "Ravel"});
    std::vector<std::vector<List::Entry>> undo;
    list->setEditionHandler([&](const List::Action& change) {
        undo.push_back(list->entries());
        change();
    });
    list->select({0, 2});
    list->removeSelectedElements();
    show(*list);
    list->setEditionHandler([](const List::Action& change) { change(); });
    for (; !undo.empty(); undo.pop_back()) {
        list->setEntries(undo.back());
        show(*list);
    }
}
