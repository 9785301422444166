// A list filtered as you type
//
// What is selected and stays in sight stays selected. What goes out of sight is selected no more, also when it comes
// back.
//
// Link Zorvan::Collections, Zorvan::Interface, Zorvan::Text.

#include <zorvan/collections/ManagedList.h>
#include <zorvan/interface/NSSearchField.h>
#include <zorvan/text/String.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto towns = ManagedList<std::string>::create({"Basel", "Bern", "Biel", "Chur"});
    const auto field = NSSearchField::create();
    field->setAction(Selector::withSender<NSSearchField>("search", [&](NSSearchField& search) {
        const std::string wanted = search.stringValue();
        towns->setFilter(isBlank(wanted) ? ManagedList<std::string>::Filter()
                                         : [wanted](const std::string& town) {
                                               return town.find(wanted) != std::string::npos;
                                           });
    }));
    towns->setSelection({1}); // Bern
    for (const char* typed : {"B", "Be", "Ber", ""}) {
        field->enterText(typed);
        for (std::int64_t row = 0; row < towns->count(); ++row)
            std::cout << (towns->selection().contains(row) ? "*" : "")
                      << towns->items()[static_cast<std::size_t>(row)] << ' ';
        std::cout << '\n';
    }
}
