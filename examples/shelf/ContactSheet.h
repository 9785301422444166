#pragma once

#include "Options.h"
#include "Picture.h"

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

/// A page of thumbnails in rows, each in a cell with its name and size below.
class ContactSheet {
public:
    /// Absent, with a reason, when so many cells make no picture.
    static std::optional<ContactSheet> make(std::size_t count, const Options& options,
                                            std::string& reason);

    /// Fills a cell. Cells may be filled from several threads at once. `thumbnail` is empty for an
    /// unreadable picture.
    void fill(std::size_t position, const std::string& name, const PictureFacts& facts,
              const zorvan::CGImage::Pointer& thumbnail);

    /// Puts the sheet in place in one step; false when it cannot be written. Ends this object's
    /// use.
    bool write(const std::string& path, zorvan::ImageExportFormat format);

private:
    struct Point {
        std::int64_t x = 0;
        std::int64_t y = 0;
    };

    ContactSheet(zorvan::Bitmap bitmap, std::int64_t columns, std::int64_t cell)
        : bitmap_(std::move(bitmap)), columns_(columns), cell_(cell) {}

    Point corner(std::size_t position) const;
    void drawThumbnail(Point corner, const zorvan::CGImage& thumbnail);
    void drawPlaySign(Point corner, const zorvan::CGImage& thumbnail);
    void drawCaption(Point corner, const std::string& name, const PictureFacts& facts);

    zorvan::Bitmap bitmap_;
    std::int64_t columns_;
    std::int64_t cell_;
};
