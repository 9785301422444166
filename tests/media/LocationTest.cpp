#include <tests/Testing.h>

#include <zorvan/media/Location.h>

#include <clocale>

namespace {

struct Reading {
    std::string text;
    double latitude, longitude;
};

TEST(Location, ReadsEveryFormOfISO6709) {
    constexpr double minutes = 12 + 34 / 60.0, seconds = minutes + 56 / 3600.0;
    for (const Reading& r : std::vector<Reading>{
             {"+48+002", 48, 2},
             {"+48.8577+002.295/", 48.8577, 2.295},
             {"-33.5-070.25+520/", -33.5, -70.25},
             {"+1234-09854/", minutes, -(98 + 54 / 60.0)},
             {"+1234.5-09854.25/", 12 + 34.5 / 60, -(98 + 54.25 / 60)},
             {"-123456+0985432/", -seconds, 98 + 54 / 60.0 + 32 / 3600.0},
             {"+123456.7-0985432.1/", minutes + 56.7 / 3600, -(98 + 54 / 60.0 + 32.1 / 3600)},
             {"+12-1805959.9/", 12, -(180 + 59 / 60.0 + 59.9 / 3600)},
             {"+1234.5+002/", 12 + 34.5 / 60, 2},
             {" \t+48+002/ \n", 48, 2},
             {"+48.5+002.5CRSWGS_84/", 48.5, 2.5},
             {"+48.5+002.5-12.5/", 48.5, 2.5},
             {"+48+002 the tower", 48, 2},
             {"+48+002./", 48, 2},
             {"+48.123456789012345678901234567890+002.5/", 48.12345678901235, 2.5},
             {"+00." + std::string(400, '0') + "1+002.5", 0, 2.5}}) {
        const auto location = Location::make({.iso6709 = r.text});
        ASSERT_TRUE(location) << r.text;
        EXPECT_DOUBLE_EQ(location->latitude, r.latitude) << r.text;
        EXPECT_DOUBLE_EQ(location->longitude, r.longitude) << r.text;
    }
}

TEST(Location, IsAbsentForAnythingElse) {
    for (const std::string malformed :
         {"", " ", "/", "Paris", "+48", "48+002", "+48 +002", "++48+002/", "+48+002/\nmore",
          "x+48+002/", "+4a+002/", "+48,5+002,5/", "+\xD9\xA4\xD9\xA8+002/", "+nan+inf", "+0x+0x1"})
        EXPECT_FALSE(Location::make({.iso6709 = malformed})) << malformed;
    for (const std::string text : {"+48+02/", "+4+002/", "+488+002/", "+48577+002/", "+48+0022/",
                                   "+48+00222222/", "+48.+002/", "+.5+002/"})
        EXPECT_FALSE(Location::make({.iso6709 = text})) << text;
    EXPECT_FALSE(Location::make({.iso6709 = std::string(1'000'000, '1')}));
    EXPECT_FALSE(Location::make({.iso6709 = "+48" + std::string("\0+002", 5)}));
}

TEST(Location, DoesNotDependOnTheLocale) {
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"}) {
        std::setlocale(LC_ALL, name); // has no effect where the machine does not know it
        EXPECT_EQ(Location::make({.iso6709 = "+48.5+002.25/"}), (Location{48.5, 2.25}));
    }
}

} // namespace
