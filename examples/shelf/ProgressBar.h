#pragma once

#include <cstddef>
#include <mutex>

/// A line on the terminal that says how far the work is; nothing when output goes elsewhere. May be
/// moved on from several threads.
class ProgressBar {
public:
    ProgressBar(std::size_t total, bool isWanted);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Takes the line away.
    ~ProgressBar();

    void step();

private:
    void draw() const;

    std::mutex mutex_;
    std::size_t total_;
    std::size_t done_ = 0;
    int shownTenths_ = -1;
    bool isShown_;
};
