// Changes the settings of shelf's window in the domain that is named, as another window of the
// program would.

#include "window/ShelfSettings.h"

using namespace zorvan;

int main(int, char** arguments) {
    const auto settings = NSUserDefaults::create({.suiteName = arguments[1]});
    (*settings)[ShelfSettings::view] = ViewKind::table;
    (*settings)[ShelfSettings::isAscending] = false;
    (*settings)[ShelfSettings::showsSidebar] = false;
}
