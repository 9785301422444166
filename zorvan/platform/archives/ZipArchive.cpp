#include <zorvan/platform/archives/ZipArchive.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Release.h>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace zorvan {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 18;

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

/// How many bytes the well-formed UTF-8 character at the start has; 0 when there is none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const unsigned first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4)
        return 0;
    // What is too long, a surrogate, or beyond the last character shows in the second byte.
    const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < least || byte(1) > most)
        return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    return length;
}

std::string wellFormed(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length > 0) {
            result += text.substr(0, length);
        } else {
            const auto byte = static_cast<unsigned char>(text.front());
            result += {'%', digits[byte >> 4], digits[byte & 15]};
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

/// The paths of all that a folder holds, relative to it, each folder before what it holds.
std::vector<std::string> contentsOf(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        paths.push_back(entry.path().string().substr(folder.size() + 1));
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
    explicit ZipWriter(Data& data) : writer_(archive_write_new()), entry_(archive_entry_new()) {
        if (!writer_ || !entry_)
            throw std::bad_alloc();
        // No padding to a block at the end: it is no tape.
        archive_write_set_bytes_in_last_block(writer_.get(), 1);
        isSound_ = archive_write_set_format_zip(writer_.get()) == ARCHIVE_OK &&
                   archive_write_open(writer_.get(), &data, nullptr, append, nullptr) == ARCHIVE_OK;
    }

    bool add(const std::string& path, const std::string& name) {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0)
            return false;
        archive_entry_clear(entry_.get());
        archive_entry_set_pathname(entry_.get(), wellFormed(name).c_str());
        archive_entry_set_mode(entry_.get(), status.st_mode);
        archive_entry_set_mtime(entry_.get(), status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
        if (S_ISREG(status.st_mode))
            return addFile(path);
        if (S_ISLNK(status.st_mode)) {
            const std::string target = std::filesystem::read_symlink(path);
            archive_entry_set_symlink(entry_.get(), target.c_str());
        }
        const bool hasPlace = S_ISDIR(status.st_mode) || S_ISLNK(status.st_mode);
        return !hasPlace || writeHeader();
    }

    bool finish() { return isSound_ && archive_write_close(writer_.get()) == ARCHIVE_OK; }

private:
    bool writeHeader() {
        return isSound_ && archive_write_header(writer_.get(), entry_.get()) == ARCHIVE_OK;
    }

    bool addFile(const std::string& path) {
        const internal::FileDescriptor file(
            ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        struct stat status {};
        if (!file || ::fstat(file.get(), &status) != 0)
            return false;
        archive_entry_set_size(entry_.get(), status.st_size);
        if (!writeHeader())
            return false;
        for (;;) {
            const ssize_t count = ::read(file.get(), buffer_.data(), buffer_.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return count == 0 && archive_write_finish_entry(writer_.get()) == ARCHIVE_OK;
            const auto size = static_cast<std::size_t>(count);
            if (archive_write_data(writer_.get(), buffer_.data(), size) != count)
                return false;
        }
    }

    std::unique_ptr<archive, Release<::archive_write_free>> writer_;
    std::unique_ptr<archive_entry, Release<::archive_entry_free>> entry_;
    std::vector<std::byte> buffer_ = std::vector<std::byte>(bufferSize);
    bool isSound_ = false;
};

} // namespace

std::optional<Data> zipArchiveOfFolder(const std::string& path) {
    const UTF8Locale locale;
    if (!locale)
        return std::nullopt;
    try {
        Data data;
        ZipWriter writer(data);
        for (const std::string& name : contentsOf(path))
            if (!writer.add(path + '/' + name, name))
                return std::nullopt;
        return writer.finish() ? std::optional(std::move(data)) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace zorvan
