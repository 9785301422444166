// A toolbar that follows the selection
//
// Each set of items says when it is the one to show; reload when the selection has changed.
//
// Link Zorvan::Collections, Zorvan::Interface.

#include <zorvan/collections/ManagedList.h>
#include <zorvan/interface/DynamicToolbar.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto list = ManagedList<std::string>::create({"one", "two", "three"});
    const auto bar = DynamicToolbar::create({"documents"});
    const auto addButton = [&](const char* name, auto action) {
        bar->addItem({.createImageButton = [=](ImageButtonSettings& button) {
            button.identifier = button.displayName = name;
            button.imageName = "plus";
            button.action = Selector(name, action);
        }});
    };
    bar->addItemSet([&] { return list->isSelectionEmpty(); });
    addButton("Add", [&] { list->append({"new"}); });
    bar->addItemSet(); // otherwise
    addButton("Remove", [&] { list->removeSelectedItems(); });
    addButton("Deselect", [&] { list->deselectAll(); });

    for (const IndexSet& selection : {IndexSet(), IndexSet{0, 2}}) {
        list->setSelection(selection);
        bar->reloadDisplayedItems();
        for (const auto& item : bar->toolbar()->items())
            std::cout << item->itemIdentifier() << ' ';
        std::cout << '\n';
    }
}
