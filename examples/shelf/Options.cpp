#include "Options.h"

#include "displayText.h"

#include <zorvan/media/CGImageDestination.h>
#include <zorvan/platform/foundation/URL.h>

#include <charconv>
#include <functional>
#include <map>
#include <set>
#include <string_view>

using zorvan::ImageExportFormat;

namespace {

const std::string whichPictures =
    R"(Which pictures:
  -r, --recursive     also those in sub-folders
      --hidden        also hidden ones, whose name begins with a dot
      --packages      also those inside packages, folders that count as one file
      --no-links      leave symbolic links out
      --type TYPE     only this type: an extension (jpg) or an identifier
                      (public.jpeg); give it several times for several types

)";

} // namespace

std::string helpText() {
    return R"(Usage: shelf [OPTIONS] PATH...
       shelf settings DOMAIN    (prints a domain of settings as XML)

Lists pictures and movies, makes a contact sheet of them, or writes smaller
copies of them; a movie stands there as one of its pictures.
A PATH is a picture, a movie, or a folder of them.

)" + whichPictures +
           R"(A contact sheet:
  -o, --output SHEET  write it here, in the format of its extension: png, jpg,
                      tiff or heic
      --columns N     pictures in a row (default: for a nearly square sheet)
      --cell N        width and height of a thumbnail in pixels (default 180)

Smaller copies:
      --export DIR    write every picture into DIR, upright, and never over
                      another file: a taken name gets a number
      --size N        fitted into N x N pixels, never enlarged (default 1024)
      --format F      png, jpg, tiff or heic (default jpg)

What is printed:
      --json          the facts as JSON instead of a table
      --quick         read only the head of each file: a picture that is broken
                      further on is not noticed (for a list alone)
  -q, --quiet         no table and no progress bar
  -h, --help          this text
      --version       the version

The exit status is 0 when all went well, also when some pictures are unreadable;
1 when something could not be written; 2 when the command line makes no sense or
names what does not exist.
)";
}

std::string windowHelpText() {
    return R"(Usage: shelf-window [OPTIONS] PATH...

Shows pictures and movies in a window.
A PATH is a picture, a movie, or a folder of them.

)" + whichPictures +
           R"(      --screenshot FILE   draw the window as a PNG file, without a screen
  -h, --help          this text
      --version       the version
)";
}

namespace {

using Names = std::set<std::string_view>;
const Names onlyOfShelf{"-o",       "--output", "--columns", "--cell",  "--export", "--size",
                        "--format", "--json",   "-q",        "--quiet", "--quick"};
const Names onlyOfWindow{"--screenshot"};

std::int64_t number(const std::string& option, const std::string& text, std::int64_t most) {
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || value < 1 || value > most)
        throw UsageError(option + " takes a number from 1 to " + std::to_string(most) + ", not '" +
                         forDisplay(text) + "'");
    return value;
}

ImageExportFormat formatNamed(const std::string& option, std::string_view extension) {
    if (const auto known = ImageExportFormat::make({.pathExt = extension})) {
        if (!zorvan::CGImageDestination::supports(known->cgType()))
            throw UsageError("the encoder for " + std::string(known->displayName()) +
                             " is not installed");
        return *known;
    }
    throw UsageError(option + " takes png, jpg, tiff or heic, not '" + forDisplay(extension) + "'");
}

/// Takes the words of the command line one by one.
class Parser {
public:
    /// Some options are those of another program.
    explicit Parser(const Names& unknown) : unknown_(unknown) {}

    Options parse(const std::vector<std::string>& arguments) {
        bool isOptions = true;
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const std::string& word = arguments[i];
            if (!isOptions || word.size() < 2 || word[0] != '-')
                options_.paths.push_back(word);
            else if (word == "--")
                isOptions = false;
            else
                i += take(word, i + 1 < arguments.size() ? &arguments[i + 1] : nullptr);
        }
        if (!options_.help && !options_.version)
            check();
        return options_;
    }

private:
    /// How many words after this one belong to it.
    std::size_t take(const std::string& word, const std::string* next) {
        const bool isLong = word.starts_with("--");
        const std::size_t equals = isLong ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        if (unknown_.contains(name))
            throw UsageError("unknown option '" + forDisplay(word) + "'");
        if (const auto flag = flags_.find(name); flag != flags_.end()) {
            if (equals != std::string::npos)
                throw UsageError(name + " takes no value");
            *flag->second = true;
            return 0;
        }
        const auto setting = settings_.find(name);
        if (setting == settings_.end())
            throw UsageError("unknown option '" + forDisplay(word) + "'");
        if (equals == std::string::npos && !next)
            throw UsageError(name + " takes a value");
        setting->second(equals == std::string::npos ? *next : word.substr(equals + 1));
        return equals == std::string::npos ? 1 : 0;
    }

    void check() const {
        if (options_.paths.empty())
            throw UsageError("name a picture or a folder of pictures");
        if (options_.json && options_.quiet)
            throw UsageError("--json and --quiet exclude each other");
        if (options_.quick && (options_.sheet || options_.exportFolder))
            throw UsageError("--quick is for a list alone, without --output and --export");
    }

    void setSheet(const std::string& path) {
        const zorvan::URL url({.fileURLWithPath = path});
        options_.sheetFormat = formatNamed("--output", url.pathExtension());
        options_.sheet = path;
    }

    void setScreenshot(const std::string& path) {
        if (formatNamed("--screenshot", zorvan::URL({.fileURLWithPath = path}).pathExtension()) !=
            ImageExportFormat::png)
            throw UsageError("--screenshot writes png only");
        options_.screenshot = path;
    }

    void setFolder(const std::string& path) {
        if (path.empty())
            throw UsageError("--export takes a folder");
        options_.exportFolder = path;
    }

    const Names& unknown_;
    Options options_;
    const std::map<std::string, bool*> flags_{
        {"-r", &options_.recursive},       {"--recursive", &options_.recursive},
        {"--hidden", &options_.hidden},    {"--packages", &options_.packages},
        {"--no-links", &options_.noLinks}, {"--json", &options_.json},
        {"-q", &options_.quiet},           {"--quiet", &options_.quiet},
        {"--quick", &options_.quick},      {"-h", &options_.help},
        {"--help", &options_.help},        {"--version", &options_.version},
    };
    const std::map<std::string, std::function<void(const std::string&)>> settings_{
        {"-o", [this](const std::string& value) { setSheet(value); }},
        {"--output", [this](const std::string& value) { setSheet(value); }},
        {"--screenshot", [this](const std::string& value) { setScreenshot(value); }},
        {"--type", [this](const std::string& value) { options_.types.push_back(value); }},
        {"--columns",
         [this](const std::string& value) { options_.columns = number("--columns", value, 1000); }},
        {"--cell",
         [this](const std::string& value) { options_.cell = number("--cell", value, 4096); }},
        {"--export", [this](const std::string& value) { setFolder(value); }},
        {"--size",
         [this](const std::string& value) {
             options_.exportSize = number("--size", value, 65535);
         }},
        {"--format",
         [this](const std::string& value) {
             options_.exportFormat = formatNamed("--format", value);
         }},
    };
};

} // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    return Parser(onlyOfWindow).parse(arguments);
}

Options parseWindowOptions(const std::vector<std::string>& arguments) {
    return Parser(onlyOfShelf).parse(arguments);
}
