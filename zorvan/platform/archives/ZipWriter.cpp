#include <zorvan/platform/archives/internal/zipWriting.h>

#include <zorvan/platform/foundation/internal/DirectoryWalk.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/openForReading.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <climits>
#include <clocale>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 18;
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Lets this thread's character set be UTF-8, which is how the archive library knows in which
/// encoding it is given names.
class UTF8Locale {
public:
    UTF8Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{})) {
        if (locale_)
            previous_ = ::uselocale(locale_);
    }
    UTF8Locale(const UTF8Locale&) = delete;
    UTF8Locale& operator=(const UTF8Locale&) = delete;
    ~UTF8Locale() {
        if (!locale_)
            return;
        ::uselocale(previous_);
        ::freelocale(locale_);
    }

    explicit operator bool() const noexcept { return locale_ != locale_t{}; }

private:
    locale_t locale_;
    locale_t previous_{};
};

std::string wellFormed(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length > 0)
            result += text.substr(0, length);
        else
            appendPercentEscape(result, text.front());
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

/// The paths of all that a folder holds, relative to it, each folder before what it holds. Absent
/// when not all of it can be listed.
std::optional<std::vector<std::string>> contentsOf(const std::string& folder) {
    const auto walk = DirectoryWalk::open(folder);
    std::vector<std::string> paths;
    while (walk && walk->advance())
        paths.push_back(walk->path().substr(folder.size() + 1));
    if (!walk || walk->error() != 0)
        return std::nullopt;
    std::sort(paths.begin(), paths.end());
    return paths;
}

la_ssize_t append(archive* writer, void* data, const void* bytes, std::size_t size) {
    const auto* first = static_cast<const std::byte*>(bytes);
    try {
        static_cast<Data*>(data)->insert(static_cast<Data*>(data)->end(), first, first + size);
    } catch (const std::exception&) {
        archive_set_error(writer, ENOMEM, "out of memory");
        return -1;
    }
    return static_cast<la_ssize_t>(size);
}

class ZipWriter {
public:
    ZipWriter(const std::string& folder, Data& data)
        : folder_(::open(internal::systemPath(folder), folderFlags)), writer_(archive_write_new()),
          entry_(archive_entry_new()) {
        if (!writer_ || !entry_)
            throw std::bad_alloc();
        // No padding to a block at the end: it is no tape.
        archive_write_set_bytes_in_last_block(writer_.get(), 1);
        isSound_ = archive_write_set_format_zip(writer_.get()) == ARCHIVE_OK &&
                   archive_write_open(writer_.get(), &data, nullptr, append, nullptr) == ARCHIVE_OK;
    }

    bool add(const std::string& path) {
        if (!goToFolderOf(path))
            return false;
        const char* const name = path.c_str() + folderPath_.size();
        // A link is opened as such.
        const FileDescriptor item(::openat(folder_.get(), name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
        struct stat status {};
        if (!item || ::fstat(item.get(), &status) != 0)
            return false;
        archive_entry_clear(entry_.get());
        archive_entry_set_pathname(entry_.get(), wellFormed(path).c_str());
        archive_entry_set_mode(entry_.get(), status.st_mode);
        archive_entry_set_mtime(entry_.get(), status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
        if (S_ISREG(status.st_mode))
            return addFile(name);
        if (S_ISLNK(status.st_mode))
            return addLink(item.get());
        return !S_ISDIR(status.st_mode) || writeHeader();
    }

    bool finish() { return isSound_ && archive_write_close(writer_.get()) == ARCHIVE_OK; }

private:
    using Identity = std::pair<dev_t, ino_t>;

    Identity go(const std::string& step) {
        folder_ = FileDescriptor(::openat(folder_.get(), step.c_str(), folderFlags));
        struct stat status {};
        ::fstat(folder_.get(), &status);
        return {status.st_dev, status.st_ino};
    }

    /// Goes from the folder of the last item to that of another. No link is followed, for one may
    /// have taken the place of a folder since that was listed.
    bool goToFolderOf(const std::string& path) {
        while (!path.starts_with(folderPath_)) {
            folderPath_.erase(folderPath_.rfind('/', folderPath_.size() - 2) + 1);
            folders_.pop_back();
            if (go("..") != folders_.back()) // it was moved
                return false;
        }
        std::size_t end = 0;
        while (folder_ && (end = path.find('/', folderPath_.size())) != path.npos) {
            const std::string name = path.substr(folderPath_.size(), end - folderPath_.size());
            folders_.push_back(go(name));
            folderPath_ += name + '/';
        }
        return bool(folder_);
    }

    bool writeHeader() {
        return isSound_ && archive_write_header(writer_.get(), entry_.get()) == ARCHIVE_OK;
    }

    bool addLink(int link) {
        std::array<char, PATH_MAX> target;
        const ssize_t length = ::readlinkat(link, "", target.data(), target.size() - 1);
        if (length < 0)
            return false;
        target[static_cast<std::size_t>(length)] = '\0';
        archive_entry_set_symlink(entry_.get(), target.data());
        return writeHeader();
    }

    bool addFile(const char* name) {
        struct stat status {};
        const FileDescriptor file = openRegularFile(folder_.get(), name, status, O_NOFOLLOW);
        if (!file)
            return false;
        archive_entry_set_size(entry_.get(), status.st_size);
        if (!writeHeader())
            return false;
        auto left =
            static_cast<std::size_t>(status.st_size); // what comes to it meanwhile is not taken
        while (left > 0) {
            const ssize_t count = uninterrupted(
                [&] { return ::read(file.get(), buffer_.data(), std::min(left, buffer_.size())); });
            if (count <= 0)
                return false;
            const auto size = static_cast<std::size_t>(count);
            if (archive_write_data(writer_.get(), buffer_.data(), size) != count)
                return false;
            left -= size;
        }
        return archive_write_finish_entry(writer_.get()) == ARCHIVE_OK;
    }

    FileDescriptor folder_;                     // that the last item stood in
    std::string folderPath_;                    // of that one, with a slash at the end
    std::vector<Identity> folders_ = {go(".")}; // those from the first to that one
    std::unique_ptr<archive, Release<::archive_write_free>> writer_;
    std::unique_ptr<archive_entry, Release<::archive_entry_free>> entry_;
    std::vector<std::byte> buffer_ = std::vector<std::byte>(bufferSize);
    bool isSound_ = false;
};

} // namespace

extern "C" void zorvanWriteZipArchive(const std::string& folder, std::optional<Data>& archive) {
    const UTF8Locale locale;
    if (!locale)
        return;
    try {
        const auto names = contentsOf(folder);
        if (!names)
            return;
        Data data;
        ZipWriter writer(folder, data);
        for (const std::string& name : *names)
            if (!writer.add(name))
                return;
        if (writer.finish())
            archive = std::move(data);
    } catch (const std::exception&) {
    }
}

} // namespace zorvan::internal
