#include <zorvan/platform/security/internal/PrivateKeyFile.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/Scratch.h>
#include <zorvan/platform/security/internal/Failure.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <sodium.h>
#include <span>
#include <string>
#include <system_error>
#include <unistd.h>

namespace zorvan::security {

namespace {

using privatestore::PrivateFolder;
using zorvan::internal::FileDescriptor;

constexpr const char* keyFile = "key";
constexpr std::string_view temporaryStart = "key."; // then a UUID
constexpr std::size_t temporarySize = temporaryStart.size() + 36;
constexpr std::string_view magic = "zorvkey1";

/// The file: the magic, the identifier, the key, and a sum over these, which tells damage from a
/// key.
constexpr std::size_t identifierAt = magic.size();
constexpr std::size_t keyAt = identifierAt + sizeof(KeyIdentifier);
constexpr std::size_t sumAt = keyAt + SealingKey::size;
constexpr std::size_t sumSize = 16;
constexpr std::size_t fileSize = sumAt + sumSize;
static_assert(sumSize >= crypto_generichash_BYTES_MIN);

std::array<std::byte, sumSize> sumOf(const Data& file) {
    std::array<std::byte, sumSize> sum;
    crypto_generichash(reinterpret_cast<unsigned char*>(sum.data()), sum.size(),
                       reinterpret_cast<const unsigned char*>(file.data()), sumAt, nullptr, 0);
    return sum;
}

/// The first bytes of a file, one more than a key file has when there are more.
Secret contentsOf(const FileDescriptor& file) {
    Secret contents(fileSize + 1);
    std::size_t filled = 0;
    while (filled < contents.bytes().size()) {
        const ssize_t count = zorvan::internal::uninterrupted([&] {
            return ::read(file.get(), contents.bytes().data() + filled,
                          contents.bytes().size() - filled);
        });
        if (count < 0)
            throw Failure{errSecIO};
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    contents.bytes().resize(filled);
    return contents;
}

SealingKey keyIn(const Data& file) {
    const bool isKey = file.size() == fileSize &&
                       std::memcmp(file.data(), magic.data(), magic.size()) == 0 &&
                       std::ranges::equal(sumOf(file), std::span(file).subspan(sumAt));
    if (!isKey)
        throw Failure{errSecNotAvailable};
    KeyIdentifier identifier;
    std::copy_n(file.begin() + identifierAt, identifier.size(), identifier.begin());
    return SealingKey::filled(identifier, [&](auto bytes) {
        std::copy_n(file.begin() + keyAt, bytes.size(), bytes.begin());
    });
}

Secret fileOf(const SealingKey& key) {
    Secret file(fileSize);
    const auto start = file.bytes().begin();
    std::ranges::copy(std::as_bytes(std::span(magic)), start);
    std::ranges::copy(key.identifier(), start + identifierAt);
    std::ranges::copy(key.bytes(), start + keyAt);
    std::ranges::copy(sumOf(file.bytes()), start + sumAt);
    return file;
}

/// Takes away the first names of a key file that a process was ended over before it could: those
/// of a new file, and as they were in earlier versions, which had "key." in front.
void dropFirstNames(const PrivateFolder& folder, ino_t node) {
    zorvan::internal::removeUnfinished(folder.path());
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path(), error)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(temporaryStart) || name.size() != temporarySize)
            continue;
        const auto status = folder.statusOfAny(name);
        if (status && status->st_ino == node)
            ::unlink(entry.path().c_str());
    }
}

/// Puts a whole file under the name of the key, unless that is taken.
void placeKeyFile(const PrivateFolder& folder, const SealingKey& key) {
    const std::string name = folder.path(keyFile);
    zorvan::internal::NewFile file(zorvan::internal::Scratch::pathBeside(name), 0600);
    int error = file.error();
    if (error == 0)
        error = file.write(fileOf(key).bytes());
    if (error == 0)
        error = file.synchronise();
    if (error == 0)
        error = file.place(name);
    if (error != 0 && error != EEXIST)
        throw std::system_error(error, std::generic_category(), name);
    folder.sync();
}

/// With the lock of the folder, since there are volumes where a new key has a second name for a
/// moment.
std::optional<SealingKey> readLocked(const PrivateFolder& folder) {
    const auto status = folder.statusOfAny(keyFile);
    if (status && status->st_nlink > 1)
        dropFirstNames(folder, status->st_ino);
    const FileDescriptor file = folder.openFile(keyFile);
    return file ? std::optional(keyIn(contentsOf(file).bytes())) : std::nullopt;
}

} // namespace

std::optional<KeyFileStamp> stampOfKeyFile(const PrivateFolder& folder) {
    const auto status = folder.statusOfAny(keyFile);
    if (!status)
        return std::nullopt;
    return KeyFileStamp{status->st_dev, status->st_ino, status->st_ctim.tv_sec,
                        status->st_ctim.tv_nsec};
}

std::optional<SealingKey> readKeyFile(const PrivateFolder& folder) {
    if (!folder.exists())
        return std::nullopt;
    const FileDescriptor lock = folder.lock();
    return readLocked(folder);
}

SealingKey readOrMakeKeyFile(const PrivateFolder& folder) {
    const FileDescriptor lock = folder.lock();
    if (auto key = readLocked(folder))
        return std::move(*key);
    placeKeyFile(folder, SealingKey::random());
    if (auto key = readLocked(folder))
        return std::move(*key);
    throw Failure{errSecIO};
}

} // namespace zorvan::security
