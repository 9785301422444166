// Versions compared
//
// By number, not by text: 2.10 is newer than 2.9.
//
// Link Zorvan::Text.

#include <zorvan/text/BundleVersion.h>

#include <iostream>

using namespace zorvan;

int main() {
    const BundleVersion running(2, 9, 4);
    for (const char* offered : {"2.10", "2.9.4", " 1.0 beta", "nonsense"}) {
        const BundleVersion version = *BundleVersion::make(offered); // lenient: never absent
        std::cout << version.description()
                  << (version > running    ? " is an update\n"
                      : version == running ? " is running\n"
                                           : " is older\n");
    }
}
