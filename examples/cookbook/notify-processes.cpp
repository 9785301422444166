// Telling the other processes of the user
//
// The same program is the other process: started with an argument, it posts.
//
// Link Zorvan::DistributedObservation.

#include <zorvan/observation/DistributedNoteSubscriber.h>
#include <zorvan/platform/dispatch/MainQueue.h>

#include <cstdlib>
#include <iostream>

using namespace zorvan;

int main(int count, char** arguments) {
    const auto center = NSDistributedNotificationCenter::defaultCenter();
    const NSNotificationName paletteChanged = "PaletteChanged";
    if (count > 1) {
        center->post(paletteChanged, "org.example.paint", {{{"Index", 3}}});
        return EXIT_SUCCESS;
    }
    const auto window = std::make_shared<std::string>("window"); // lives as long as it is told
    const auto subscriber = DistributedNoteSubscriber::create(center);
    subscriber->setName(paletteChanged);
    subscriber->setObject("org.example.paint");
    subscriber->subscribe(window, [](const auto& told, const Notification& note) {
        if (const auto* index = note.value<PropertyList>("Index"))
            std::cout << *told << " shows palette " << *index->as<std::int64_t>() << '\n';
        MainQueue::stop();
    });
    if (std::system((std::string(arguments[0]) + " post").c_str()) != EXIT_SUCCESS)
        return EXIT_FAILURE;
    MainQueue::run();
}
