#pragma once

#include <zorvan/platform/foundation/RawRepresentable.h>
#include <zorvan/settings/EnumCoders.h>
#include <zorvan/settings/ImageExportFormatUDC.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>

#include <optional>
#include <string_view>

enum class PictureOrder { name, date };
enum class ViewKind { grid, table };

template <>
struct zorvan::RawRepresentation<PictureOrder> {
    static std::string_view rawValue(PictureOrder order) {
        return order == PictureOrder::name ? "name" : "date";
    }
    static std::optional<PictureOrder> make(std::string_view raw) {
        if (raw != "name" && raw != "date")
            return std::nullopt;
        return raw == "name" ? PictureOrder::name : PictureOrder::date;
    }
};

template <>
struct zorvan::RawRepresentation<ViewKind> {
    static std::string_view rawValue(ViewKind kind) {
        return kind == ViewKind::grid ? "grid" : "table";
    }
    static std::optional<ViewKind> make(std::string_view raw) {
        if (raw != "grid" && raw != "table")
            return std::nullopt;
        return raw == "grid" ? ViewKind::grid : ViewKind::table;
    }
};

/// What the window keeps from one start to the next, and shares with other windows.
struct ShelfSettings : zorvan::UserDefaultsKeys {
    template <class Coder>
    using Key = zorvan::EvaluedUserDefaultsKey<Coder>;

    static inline const Key<zorvan::EnumStringUDC<ViewKind>> view{
        {.name = "View", .value = ViewKind::grid}};
    static inline const Key<zorvan::EnumStringUDC<PictureOrder>> order{
        {.name = "Order", .value = PictureOrder::name}};
    static inline const Key<zorvan::BoolUDC> isAscending{{.name = "Ascending", .value = true}};
    /// In points, from 64 to 320.
    static inline const Key<zorvan::DoubleUDC> thumbnailSize{
        {.name = "ThumbnailSize", .value = 128}};
    static inline const Key<zorvan::BoolUDC> showsSidebar{{.name = "Sidebar", .value = true}};
    /// In points.
    static inline const Key<zorvan::DoubleUDC> sidebarWidth{{.name = "SidebarWidth", .value = 180}};
    /// What the thumbnails in memory may take; counts from the next start.
    static inline const Key<zorvan::IntUDC> cacheMegabytes{
        {.name = "ThumbnailCacheMegabytes", .value = 64}};
    /// The longer side of exported copies, in pixels.
    static inline const Key<zorvan::IntUDC> exportSize{{.name = "ExportSize", .value = 1024}};
    static inline const Key<zorvan::ImageExportFormatUDC> exportFormat{
        {.name = "ExportFormat", .value = zorvan::ImageExportFormat::jpg}};
};
