#pragma once

#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <array>
#include <string>

/// Movies for the tests, made by the ffmpeg command in a folder that lasts as long as the process.
namespace testmovies {

/// A path in that folder.
std::string path(const std::string& name);
zorvan::URL url(const std::string& name);

void write(const std::string& name, const std::string& bytes);
std::string read(const std::string& name);

/// Has ffmpeg write the file of that name, once; arguments stand between spaces.
zorvan::URL make(const std::string& name, const std::string& arguments);
/// A quarter of a second of a test picture: "64x48", "30000/1001". A space follows.
std::string picture(const std::string& size, const std::string& rate);

/// Gives the `index`-th track of an MP4 or QuickTime file (a, b, c, d, x, y) as its matrix.
void setMatrix(const std::string& name, int index, const std::array<double, 6>& matrix);

/// What the movies of numbers are made of.
struct Numbers {
    std::string rate = "25";
    std::string container = "mp4";
    int count = 100;
    int keyInterval = 25;
    std::string options = {};
};
constexpr int bitWidth = 16, numberBits = 8, numberHeight = 32;

/// A movie whose pictures show their number as bars, the lowest bit at the left.
zorvan::URL numbers(const std::string& name, const Numbers& numbers = {});
/// The number that such a picture shows.
int numberOf(const zorvan::Bitmap& picture);

} // namespace testmovies
