// A window that is clicked and drawn without a display.
// Link Zorvan::Interface.

#include <zorvan/interface.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto window = NSWindow::create({200, 100}, "Photos");
    int clicks = 0;
    const auto button =
        NSButton::create({.title = "Import", .action = Selector("import", [&] { ++clicks; })});
    button->setBezelColor(NSColor::orange);
    window->contentView()->addSubview(button);

    button->performClick(); // as a person, or a screen reader, would
    const auto picture = window->contentView()->render(2);
    std::cout << clicks << ' ' << picture->width() << " x " << picture->height() << '\n';
}
