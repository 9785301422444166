#pragma once

#include <zorvan/platform/propertylist/NSBundle.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace zorvan {

/// A folder of the test's own for bundles, which takes itself away.
class BundleTest : public testing::Test {
protected:
    BundleTest() {
        std::string name = (std::filesystem::temp_directory_path() / "zorvan-bundle-XXXXXX");
        root_ = mkdtemp(name.data());
    }
    ~BundleTest() override { std::filesystem::remove_all(root_); }

    void write(const std::string& path, const std::string& text = "") {
        std::filesystem::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path, std::ios::binary) << text;
    }
    void writeInformation(const std::string& path, const std::string& entries) {
        write(path, "<plist><dict>" + entries + "</dict></plist>");
    }

    std::string path(const std::string& below) const { return (root_ / below).string(); }

    /// Where a file lies below the folder; nothing when there is none.
    std::string below(const std::optional<URL>& url) const {
        return url ? std::filesystem::relative(url->path(), root_).string() : "";
    }

    std::filesystem::path root_;
};

} // namespace zorvan
