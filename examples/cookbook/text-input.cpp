// What was typed into a form
//
// No pattern can hang the program: a search has bounds.
//
// Link Zorvan::Text.

#include <zorvan/text/String.h>

#include <iostream>

using namespace zorvan;

int main() {
    for (const char* mail : {"ada@example.org", "ada at example"})
        std::cout << mail << (isValidEmail(mail) ? "" : " is no address") << '\n';

    for (const auto& groups : captureMatches("width=30; height=40", R"((\w+)=(\d+))"))
        std::cout << groups[0] << " is " << groups[1] << '\n';

    const std::string name = "  Ada\t";
    std::cout << '"' << strip(name) << "\", " << (isBlank(" \n") ? "blank" : "text") << '\n';
    std::cout << safeDouble("2.5e3", {0, 5}).value_or(0) << '\n'; // in every locale with a point
}
