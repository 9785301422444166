#include "report.h"

#include "displayText.h"

#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/settings/JSON.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

using namespace zorvan;

namespace {

constexpr std::size_t widestName = 48;

using Row = std::array<std::string, 6>;
using Widths = std::array<std::size_t, 6>;

std::string numberText(double value) { return std::to_string(static_cast<std::int64_t>(value)); }

std::string rateText(float rate) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.begin(), text.end(), static_cast<double>(rate),
                                       std::chars_format::general, 5);
    return {text.begin(), written.ptr};
}

/// "2024-05-31T12:34:56Z".
std::string dateText(Date date) {
    const std::time_t seconds =
        std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(date));
    std::tm parts{};
    std::array<char, 64> text{};
    gmtime_r(&seconds, &parts);
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

std::string movieText(const MovieFacts& movie) {
    std::string text = movie.duration ? durationText(*movie.duration) : "movie";
    if (movie.frameRate > 0)
        text += ", " + rateText(movie.frameRate) + " a second";
    return movie.date ? text + ", " + dateText(*movie.date).substr(0, 10) : text;
}

/// Bytes of a name that are no UTF-8 become U+FFFD.
JSON textOf(const std::string& bytes) { return utf8FromUTF16(utf16FromUTF8(bytes)); }

JSON sideOf(const std::optional<CGSize>& size, double CGSize::*side) {
    return size ? JSON(static_cast<std::int64_t>((*size).*side)) : JSON();
}

JSON jsonOf(const ListedFile& file, const PictureFacts& facts) {
    JSON::Object entries{
        {"path", textOf(file.url.path())},
        {"type", facts.type ? textOf(*facts.type) : JSON()},
        {"width", sideOf(facts.size, &CGSize::width)},
        {"height", sideOf(facts.size, &CGSize::height)},
        {"orientation", facts.size ? JSON(facts.orientation) : JSON()},
        {"uprightWidth", sideOf(facts.uprightSize, &CGSize::width)},
        {"uprightHeight", sideOf(facts.uprightSize, &CGSize::height)},
        {"error", facts.error.empty() ? JSON() : textOf(facts.error)},
    };
    if (const auto& movie = facts.movie) {
        const auto thousandths = [](double value) { return std::round(value * 1000) / 1000; };
        entries["duration"] = movie->duration ? JSON(thousandths(*movie->duration)) : JSON();
        entries["frameRate"] = movie->frameRate > 0 ? JSON(thousandths(movie->frameRate)) : JSON();
        entries["date"] = movie->date ? JSON(dateText(*movie->date)) : JSON();
    }
    return entries;
}

Row rowOf(const ListedFile& file, const PictureFacts& facts) {
    Row row{shortened(forDisplay(file.name), widestName),
            forDisplay(facts.type.value_or("unknown"))};
    if (!facts.error.empty()) {
        row[2] = "unreadable: " + forDisplay(facts.error);
        return row;
    }
    row[2] = sizeText(*facts.size);
    row[3] = std::to_string(facts.orientation);
    row[4] = sizeText(*facts.uprightSize);
    if (facts.movie)
        row[5] = movieText(*facts.movie);
    return row;
}

/// The reason of an unreadable picture runs over the columns after it, so it widens none.
std::size_t columnWidth(const std::vector<Row>& rows, std::size_t column) {
    std::size_t width = 0;
    for (const Row& row : rows)
        if (column < 2 || !row[3].empty())
            width = std::max(width, displayWidth(row[column]));
    return width;
}

std::string lineOf(const Row& row, const Widths& widths) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column)
        line += padded(row[column], widths[column]) + "  ";
    line.resize(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

} // namespace

std::string sizeText(const CGSize& size) {
    return numberText(size.width) + " x " + numberText(size.height);
}

std::string durationText(double seconds) {
    const auto all = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e12));
    std::array<char, 64> text{};
    const long long hours = all / 3600, minutes = all / 60 % 60, rest = all % 60;
    if (hours > 0)
        std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", hours, minutes, rest);
    else
        std::snprintf(text.data(), text.size(), "%lld:%02lld", minutes, rest);
    return text.data();
}

std::string table(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts) {
    if (files.empty())
        return {};
    std::vector<Row> rows{{"Name", "Type", "Size", "Orientation", "Upright"}};
    if (std::ranges::any_of(facts, [](const PictureFacts& fact) { return !!fact.movie; }))
        rows.front()[5] = "Movie";
    for (std::size_t i = 0; i < files.size(); ++i)
        rows.push_back(rowOf(files[i], facts[i]));
    Widths widths{};
    for (std::size_t column = 0; column < widths.size(); ++column)
        widths[column] = columnWidth(rows, column);
    std::string text;
    for (const Row& row : rows)
        text += lineOf(row, widths);
    const auto unreadable = static_cast<std::size_t>(std::count_if(
        facts.begin(), facts.end(), [](const PictureFacts& fact) { return !fact.error.empty(); }));
    text += '\n' + counted(files.size(), "file");
    if (unreadable > 0)
        text += ", " + std::to_string(unreadable) + " unreadable";
    return text + '\n';
}

std::string json(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts) {
    std::string text = "[";
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Data line = jsonOf(files[i], facts[i]).text();
        text += i == 0 ? "\n  " : ",\n  ";
        text.append(reinterpret_cast<const char*>(line.data()), line.size());
    }
    return text + (files.empty() ? "]\n" : "\n]\n");
}
