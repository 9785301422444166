#pragma once

#include <tests/Testing.h>
#include <tests/files/ChildProcess.h>
#include <tests/files/TemporaryFolder.h>

#include <span>

inline constexpr std::int64_t nothing = -1, damaged = -2;

/// Something with a number of slots that is written step by step: step i puts i into the slot i
/// modulo that number.
struct Store {
    const char* name;
    int slotCount;
    /// Throws when it does not succeed. Whether it withstands a power failure from now on, with all
    /// before it.
    bool (*step)(const std::filesystem::path& folder, std::int64_t i);
    /// The number in each slot, `nothing` or `damaged`.
    std::vector<std::int64_t> (*found)(const std::filesystem::path& folder);
};

void PrintTo(const Store& store, std::ostream* out);

/// Settings, secrets, a file that is written in one step, and a folder that is copied over another.
std::span<const Store> stores();

/// How often something is tried: as the variable of the environment says, by which a campaign asks
/// for more.
int tries(const char* variable, int unlessAsked);

/// Expects what is found in the slots to be what was there after some step, that of the number
/// promised or a later one. Returns its number.
std::int64_t checkStore(const Store& store, const std::filesystem::path& folder,
                        std::int64_t promised);

/// Expects that, and that the next step can be taken.
void goOn(const Store& store, const std::filesystem::path& folder, std::int64_t promised);

/// False when the step says that it could not be taken.
bool takeStep(const Store& store, const std::filesystem::path& folder, std::int64_t i);

/// A store that has taken its first step, and a copy of it to spoil.
class StoreTest : public testing::TestWithParam<Store> {
protected:
    StoreTest() {
        fs::create_directory(before_);
        EXPECT_EQ(exitStatus(startChild([&] { store_.step(before_, 0); })), 0);
    }

    void restore() const {
        fs::remove_all(folder_);
        fs::copy(before_, folder_, fs::copy_options::recursive);
    }

    const Store& store_ = GetParam();
    const TemporaryFolder folders_{TemporaryFolder::fastParent()};
    const fs::path before_ = folders_.path() / "before", folder_ = folders_.path() / "folder";
};

/// For the instances of such tests.
inline const auto eachStore = testing::ValuesIn(stores().begin(), stores().end());
inline std::string nameOf(const testing::TestParamInfo<Store>& info) { return info.param.name; }
