#include "TestMovies.h"
#include <tests/files/TemporaryFolder.h>

#include <cmath>
#include <cstring>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace testmovies {
namespace {

void runFFmpeg(const std::string& arguments) {
    std::string line = "ffmpeg -v error -nostdin -y " + arguments;
    std::vector<char*> words;
    for (char* word = std::strtok(line.data(), " "); word; word = std::strtok(nullptr, " "))
        words.push_back(word);
    words.push_back(nullptr);
    pid_t process = 0;
    int status = 0;
    if (posix_spawnp(&process, "ffmpeg", nullptr, nullptr, words.data(), environ) != 0 ||
        waitpid(process, &status, 0) != process || status != 0)
        throw std::runtime_error("ffmpeg failed with " + arguments);
}

void putInt32(std::string& bytes, std::size_t at, std::int32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes.at(at + static_cast<std::size_t>(i)) =
            static_cast<char>(static_cast<std::uint32_t>(value) >> (24 - 8 * i));
}

} // namespace

std::string path(const std::string& name) {
    static const TemporaryFolder folder;
    return folder.path() / name;
}

zorvan::URL url(const std::string& name) { return zorvan::URL({.fileURLWithPath = path(name)}); }

void write(const std::string& name, const std::string& bytes) {
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string read(const std::string& name) { return text(path(name)); }

zorvan::URL make(const std::string& name, const std::string& arguments) {
    if (!std::filesystem::exists(path(name)))
        runFFmpeg(arguments + " " + path(name));
    return url(name);
}

std::string picture(const std::string& size, const std::string& rate) {
    return "-f lavfi -i testsrc=s=" + size + ":r=" + rate + ":d=0.25 ";
}

void setMatrix(const std::string& name, int index, const std::array<double, 6>& matrix) {
    std::string bytes = read(name);
    std::size_t box = 0;
    for (int i = 0; i <= index; ++i)
        box = bytes.find("tkhd", box) + 4;
    const std::size_t start = box + 40; // after version, flags and nine fields
    const std::array<double, 9> all{matrix[0], matrix[1], 0,         matrix[2], matrix[3],
                                    0,         matrix[4], matrix[5], 1};
    for (std::size_t i = 0; i < all.size(); ++i)
        putInt32(bytes, start + 4 * i,
                 static_cast<std::int32_t>(std::lround(all[i] * (i % 3 == 2 ? 1 << 30 : 1 << 16))));
    write(name, bytes);
}

zorvan::URL numbers(const std::string& name, const Numbers& numbers) {
    std::string pixels;
    for (int number = 0; number < numbers.count; ++number) {
        std::string row;
        for (int bit = 0; bit < numberBits; ++bit)
            row.append(bitWidth, (number >> bit & 1) != 0 ? '\xff' : '\0');
        for (int y = 0; y < numberHeight; ++y)
            pixels += row;
    }
    write(name + ".gray", pixels);
    return make(name + "." + numbers.container,
                "-f rawvideo -pix_fmt gray -s " + std::to_string(bitWidth * numberBits) + "x" +
                    std::to_string(numberHeight) + " -r " + numbers.rate + " -i " +
                    path(name + ".gray") + " " + numbers.options +
                    " -c:v libx264 -threads 1 -pix_fmt yuv420p -bf 2 -sc_threshold 0 -g " +
                    std::to_string(numbers.keyInterval));
}

int numberOf(const zorvan::Bitmap& picture) {
    int number = 0;
    for (int bit = 0; bit < numberBits; ++bit)
        if (picture.row(numberHeight / 2)[(bit * bitWidth + bitWidth / 2) * 4] > 127)
            number |= 1 << bit;
    return number;
}

} // namespace testmovies
