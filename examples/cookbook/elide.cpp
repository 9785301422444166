// A long title in a narrow column
//
// Lengths are in characters as readers count them: a family of four is one.
//
// Link Zorvan::Text.

#include <zorvan/text/String.h>

#include <iostream>

using namespace zorvan;

int main() {
    const std::string title = "Holiday in the Engadine 2024 (3).jpg";
    std::cout << reducedStringAtEnd(title, 15) << '\n'
              << reducedStringAtMiddle(title, 15) << '\n'
              << reducedStringAtStart(title, 15) << '\n';
    std::cout << count("👨‍👩‍👧‍👦 né") << " characters\n";
    std::cout << incremented("Holiday (9)") << '\n';
    std::string name = "holiday.jpeg";
    if (replaceSuffix(name, ".jpeg", ".png"))
        std::cout << name << '\n';
}
