#pragma once

#include <zorvan/platform/bundles/NSBundle.h>

#include <tests/files/TemporaryFolder.h>

/// A folder of the test's own for bundles.
class BundleTest : public testing::Test {
protected:
    void write(const std::string& path, const std::string& text = "") { folder_.file(path, text); }
    void writeInformation(const std::string& path, const std::string& entries) {
        write(path, "<plist><dict>" + entries + "</dict></plist>");
    }

    std::string path(const std::string& below) const { return (root_ / below).string(); }

    /// Where a file lies below the folder; nothing when there is none.
    std::string below(const std::optional<zorvan::URL>& url) const {
        return url ? folder_.relative(*url) : "";
    }

    const TemporaryFolder folder_;
    const std::filesystem::path root_ = folder_.path();
};
