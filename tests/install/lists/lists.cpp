#include <zorvan/collections.h>

#include <functional>
#include <string>

int main() {
    const auto names = zorvan::ManagedList<std::string>::create({"b.jpg", "a.png", "c.jpg"});
    names->setSelection({1});
    names->setFilter([](const std::string& name) { return name.ends_with("g"); });
    names->sort(std::less<>{});
    return names->selection() == zorvan::IndexSet({0}) ? 0 : 1;
}
