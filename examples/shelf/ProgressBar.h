#pragma once

#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>
#include <unistd.h>

/// A line on the terminal that says how far the work is; nothing when output goes elsewhere. May be
/// moved on from several threads.
class ProgressBar {
public:
    ProgressBar(std::size_t total, bool isWanted)
        : total_(total),
          isShown_(isWanted && total > 0 && ::isatty(STDOUT_FILENO) && ::isatty(STDERR_FILENO)) {
        draw();
    }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Takes the line away.
    ~ProgressBar() {
        if (isShown_)
            std::fputs("\r\033[K", stderr);
    }

    void step() {
        const std::scoped_lock lock(mutex_);
        // Not more often than anybody could see.
        const std::size_t shownTenths = done_ * 1000 / total_;
        if (++done_ * 1000 / total_ != shownTenths)
            draw();
    }

private:
    void draw() const {
        if (!isShown_)
            return;
        constexpr std::size_t width = 40;
        const std::size_t filled = done_ * width / total_;
        std::string bar = "\r[";
        bar.append(filled, '#').append(width - filled, '.');
        bar += "] " + std::to_string(done_) + " of " + std::to_string(total_);
        std::fputs(bar.c_str(), stderr);
    }

    std::mutex mutex_;
    const std::size_t total_;
    std::size_t done_ = 0;
    const bool isShown_;
};
