// A property list written and read
//
// XML for people, or the binary form; the reader takes either, and any bytes.
//
// Link Zorvan::PropertyListFiles.

#include <zorvan/platform/propertylist/PropertyListFile.h>

#include <iostream>

using namespace zorvan;

int main() {
    const PropertyList::Dictionary scene = {
        {"Title", "Lake"}, {"Layers", PropertyList::Array{"sky", "water"}}, {"Opacity", 0.5}};
    std::string reason;
    if (!propertylist::writeFile(scene, propertylist::Format::xml, "scene.plist", &reason)) {
        std::cout << reason << '\n';
        return 1;
    }
    const std::optional<PropertyList> read = propertylist::readFile("scene.plist", &reason);
    const auto* fields = read ? read->as<PropertyList::Dictionary>() : nullptr;
    if (!fields) {
        std::cout << "no scene: " << reason << '\n';
        return 1;
    }
    for (const auto& [name, value] : *fields)
        if (const auto* layers = value.as<PropertyList::Array>())
            std::cout << name << ": " << layers->size() << '\n';
        else if (const auto text = value.as<std::string_view>())
            std::cout << name << ": " << *text << '\n';
        else if (const auto number = value.as<double>())
            std::cout << name << ": " << *number << '\n';
}
