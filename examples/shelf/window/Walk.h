#pragma once

#include "Options.h"
#include "PictureFile.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

/// Goes through files and folders in the background and tells, on the main queue, what it has found
/// since the last time. Ends, and tells nothing more, when the object goes.
class Walk {
public:
    using Batch = std::vector<PictureFile::Pointer>;
    /// Told about ten times a second, and once at the end.
    using Handler = std::function<void(Batch found, bool isLast)>;

    Walk(Options options, Handler handler);
    ~Walk() { *isEnded_ = true; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

private:
    const std::shared_ptr<std::atomic<bool>> isEnded_ = std::make_shared<std::atomic<bool>>(false);
};
