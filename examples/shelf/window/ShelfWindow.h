#pragma once

#include "Album.h"
#include "Export.h"
#include "LargePicture.h"
#include "Options.h"
#include "PictureViews.h"
#include "ShelfSettings.h"
#include "Sidebar.h"
#include "StatusBar.h"
#include "Thumbnails.h"
#include "Walk.h"

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSMenu.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/settings/SettingsObservation.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The window of the application: the pictures of some folders, and what can be done with them.
class ShelfWindow : public std::enable_shared_from_this<ShelfWindow> {
public:
    /// There at once; the folders are gone through in the background.
    static std::shared_ptr<ShelfWindow> create(Options options);

    const std::shared_ptr<zorvan::NSWindow>& window() const { return window_; }
    const std::shared_ptr<Album>& album() const { return album_; }
    const std::shared_ptr<Thumbnails>& thumbnails() const { return thumbnails_; }
    const std::shared_ptr<LargePicture>& largePicture() const { return large_; }
    const std::shared_ptr<zorvan::NSMenu>& menu() const { return menu_; }
    /// Whether the folders are being gone through.
    bool isWalking() const { return walk_ != nullptr; }
    bool isExporting() const { return export_ != nullptr; }

    // What a person can do; all of it is about the selected pictures.

    void open();
    void close();
    void copy();
    void moveToTrash();
    void chooseExportFolder();
    void exportTo(const std::string& folder);
    void cancelExport();

    void reload();
    void find();
    void toggleSidebar();
    void setView(ViewKind kind);
    void setOrder(PictureOrder order, bool isAscending);
    /// Thumbnails larger or smaller by that factor.
    void zoom(double by);

private:
    explicit ShelfWindow(Options options);
    void start();
    void makeViews();
    void makeMenu();
    void makeToolbar();
    void addToMenu(const char* title, void (ShelfWindow::*act)(), const char* key,
                   bool isForSelection = false);
    void search(zorvan::NSSearchField& field);
    void chooseView(zorvan::NSToolbarItemGroup& group);
    void chooseOrder(zorvan::NSToolbarItemGroup& group);
    void showGrid() { setView(ViewKind::grid); }
    void showTable() { setView(ViewKind::table); }
    void zoomIn() { zoom(1.25); }
    void zoomOut() { zoom(0.8); }

    void followSettings();
    void followAlbum();
    void followExport();
    void saveSidebar();
    void showSidebar(bool shows);
    void showView(ViewKind kind);
    void step(std::int64_t by);
    void forget(const Album::Files& trashed);
    std::string status() const;
    bool isLarge() const { return large_->file() != nullptr; }

    const Options options_;
    const std::shared_ptr<zorvan::NSUserDefaults> settings_ =
        zorvan::NSUserDefaults::standardUserDefaults();
    const std::shared_ptr<zorvan::NSWindow> window_;
    const std::shared_ptr<zorvan::NSSplitView> split_ = zorvan::NSSplitView::create();
    const std::shared_ptr<zorvan::NSMenu> menu_ = zorvan::NSMenu::create();
    const std::shared_ptr<zorvan::DynamicToolbar> toolbar_ =
        zorvan::DynamicToolbar::create({"shelf"});
    std::vector<std::shared_ptr<zorvan::NSMenuItem>> itemsForSelection_;
    std::shared_ptr<zorvan::NSSearchField> searchField_;
    std::shared_ptr<zorvan::NSToolbarItemGroup> viewGroup_, orderGroup_;
    std::shared_ptr<Thumbnails> thumbnails_;
    std::shared_ptr<Album> album_;
    std::shared_ptr<PictureViews> views_;
    std::shared_ptr<LargePicture> large_;
    std::shared_ptr<Sidebar> sidebar_;
    std::shared_ptr<StatusBar> statusBar_;
    std::shared_ptr<Stage> stage_;
    std::unique_ptr<Walk> walk_;
    std::shared_ptr<Export> export_;
    std::shared_ptr<zorvan::SettingsObservation> observation_;
    double thumbnailSize_ = 0;         // as shown
    std::optional<bool> showsSidebar_; // as it was last set, which a person may have changed since
};
