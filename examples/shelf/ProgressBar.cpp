#include "ProgressBar.h"

#include <cstdio>
#include <string>
#include <unistd.h>

ProgressBar::ProgressBar(std::size_t total, bool isWanted)
    : total_(total),
      isShown_(isWanted && total > 0 && ::isatty(STDOUT_FILENO) && ::isatty(STDERR_FILENO)) {
    if (isShown_)
        draw();
}

ProgressBar::~ProgressBar() {
    if (isShown_)
        std::fputs("\r\033[K", stderr);
}

void ProgressBar::step() {
    const std::scoped_lock lock(mutex_);
    ++done_;
    if (!isShown_)
        return;
    // Not more often than anybody could see.
    const int tenths = static_cast<int>(done_ * 1000 / total_);
    if (tenths != shownTenths_)
        draw();
    shownTenths_ = tenths;
}

void ProgressBar::draw() const {
    constexpr std::size_t width = 40;
    const std::size_t filled = done_ * width / total_;
    std::string bar = "\r[";
    bar.append(filled, '#').append(width - filled, '.');
    bar += "] " + std::to_string(done_) + " of " + std::to_string(total_);
    std::fputs(bar.c_str(), stderr);
}
