// A settings window that follows another process
//
// The same program is the other process: started with an argument, it changes the setting.
//
// Link Zorvan::Interface, Zorvan::Settings.

#include <zorvan/interface/NSButton.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>

#include <cstdlib>
#include <iostream>
#include <string>

using namespace zorvan;

const EvaluedUserDefaultsKey<BoolUDC> showsHidden({.name = "ShowsHiddenFiles", .value = false});

int main(int count, char** arguments) {
    const auto store = NSUserDefaults::create({.suiteName = "cookbook"});
    if (count > 1) {
        store->set(showsHidden, true);
        return EXIT_SUCCESS;
    }
    const auto button = NSButton::create({.title = ""});
    const auto show = [&](bool isShown) {
        button->setTitle(isShown ? "Hide hidden files" : "Show hidden files");
        std::cout << button->title() << std::endl;
    };
    show(store->value(showsHidden));
    const auto observation = store->observe(showsHidden, [&](bool, bool isShown) {
        show(isShown);
        MainQueue::stop();
    });
    if (std::system((std::string(arguments[0]) + " change").c_str()) != EXIT_SUCCESS)
        return EXIT_FAILURE;
    MainQueue::run(); // or the event loop of Qt or GTK: see qt.md and gtk.md
}
