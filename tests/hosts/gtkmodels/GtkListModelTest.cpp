// Models of GTK over lists, without a display.

#include "tests/hosts/Things.h"

#include <zorvan/hosts/gtkmodels/GLibMainQueue.h>
#include <zorvan/hosts/gtkmodels/GdkTexture.h>
#include <zorvan/hosts/gtkmodels/GtkListModel.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <gtk/gtk.h>

namespace {

template <class Object>
std::shared_ptr<Object> owned(Object* reference) {
    return reference ? std::shared_ptr<Object>(reference, g_object_unref) : nullptr;
}
using Row = std::shared_ptr<void>;

Row rowAt(GtkSelectionModel* model, guint at) {
    return owned(g_list_model_get_item(G_LIST_MODEL(model), at));
}
const Thing& thingOf(const Row& row) { return GtkListModel<Thing>::item(row.get()); }

/// Keeps by the signals alone what a model shows and has selected, as a view would, with the
/// objects of all rows held.
class Watcher {
public:
    explicit Watcher(GtkSelectionModel* model) : model_(model) {
        read(0, g_list_model_get_n_items(G_LIST_MODEL(model)));
        g_signal_connect(
            model, "items-changed",
            G_CALLBACK(+[](GListModel*, guint at, guint removed, guint added, Watcher* self) {
                self->told.push_back({at, removed, added});
                const auto first = self->rows_.begin() + at;
                self->rows_.erase(first, first + removed);
                self->read(at, added);
            }),
            this);
        g_signal_connect(model, "selection-changed",
                         G_CALLBACK(+[](GtkSelectionModel*, guint at, guint count, Watcher* self) {
                             for (guint i = at; i < at + count; ++i)
                                 self->rows_[i].isSelected =
                                     gtk_selection_model_is_selected(self->model_, i);
                         }),
                         this);
    }
    ~Watcher() { g_signal_handlers_disconnect_by_data(model_, this); }

    /// By what they are of.
    std::map<int, Row> objects() const {
        std::map<int, Row> objects;
        for (const Entry& row : rows_)
            objects[thingOf(row.object).self] = row.object;
        return objects;
    }
    /// After a change: what is shown and selected, and that rows keep their objects.
    template <class List>
    void expectShown(const List& list, const std::map<int, Row>& objectsBefore) const {
        ASSERT_EQ(rows_.size(), shownItems(list).size());
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            const Thing& thing = shownItems(list)[i];
            ASSERT_EQ(thingOf(rows_[i].object).self, thing.self);
            ASSERT_EQ(rows_[i].isSelected, list.selection().contains(static_cast<std::int64_t>(i)));
            ASSERT_EQ(rowAt(model_, static_cast<guint>(i)), rows_[i].object);
            const auto before = objectsBefore.find(thing.self);
            if (before != objectsBefore.end() && thingOf(before->second) == thing) {
                ASSERT_EQ(rows_[i].object, before->second) << "of thing " << thing.self;
            }
        }
    }

    /// Of each signal, where it begins, and how many rows have gone and come.
    using Told = std::array<guint, 3>;
    std::vector<Told> told;

private:
    struct Entry {
        bool isSelected;
        Row object;
    };

    void read(guint at, guint count) {
        for (guint i = at; i < at + count; ++i)
            rows_.insert(rows_.begin() + i,
                         {gtk_selection_model_is_selected(model_, i) != FALSE, rowAt(model_, i)});
    }

    GtkSelectionModel* model_;
    std::vector<Entry> rows_;
};

TEST(GtkListModel, FollowsListsThroughThousandsOfChanges) {
    for (const int nameCount : {7, 1'000'000'000}) {
        Changes changes(1, nameCount);
        const auto expectFollowed = [&](const auto& list) {
            const auto model = owned(GtkListModel<Thing>::create(list));
            const Watcher watcher(model.get());
            changes.changeThousandsOfTimes(
                *list, [&] { return watcher.objects(); },
                [&](const auto& objects) { watcher.expectShown(*list, objects); });
        };
        expectFollowed(ManagedList<Thing>::create(changes.things(30)));
        expectFollowed(SelectableArray<Thing>::create());
    }
}

TEST(GtkListModel, TellsOnlyOfTheRowsThatChange) {
    Changes changes(2);
    const auto list = ManagedList<Thing>::create(changes.things(10));
    const auto model = owned(GtkListModel<Thing>::create(list));
    Watcher watcher(model.get());
    const auto toldOf = [&](const std::function<void()>& act) {
        watcher.told.clear();
        act();
        return watcher.told;
    };
    using Told = Watcher::Told;
    const auto bySelf = [](const Thing& a, const Thing& b) { return a.self < b.self; };
    EXPECT_THAT(toldOf([&] { list->insert(changes.things(2), 4); }), ElementsAre(Told{4, 0, 2}));
    EXPECT_THAT(toldOf([&] { list->remove(IndexSet{4, 5}); }), ElementsAre(Told{4, 2, 0}));
    EXPECT_THAT(toldOf([&] { list->move({2}, 5); }), ElementsAre(Told{2, 3, 3}));
    EXPECT_THAT(toldOf([&] { list->sort(bySelf); }), ElementsAre(Told{2, 3, 3}));
    EXPECT_THAT(
        toldOf([&] { list->setFilter([](const Thing& t) { return t.self != 3 && t.self != 6; }); }),
        ElementsAre(Told{3, 4, 2}));
    const IndexSet changed{1, 2, 5, 99};
    const Row before = rowAt(model.get(), 1), beside = rowAt(model.get(), 3);
    EXPECT_THAT(toldOf([&] { GtkListModel<Thing>::itemsDidChange(model.get(), changed); }),
                ElementsAre(Told{1, 2, 2}, Told{5, 1, 1}));
    EXPECT_NE(rowAt(model.get(), 1), before) << "an object of what is there now";
    EXPECT_EQ(rowAt(model.get(), 3), beside);
}

TEST(GtkListModel, SelectsBothWays) {
    const auto list = ManagedList<int>::create({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    const auto held = owned(GtkListModel<int>::create(list));
    GtkSelectionModel* model = held.get();
    const auto selected = [&](const std::function<void()>& act) {
        act();
        return list->selection();
    };
    EXPECT_EQ(selected([&] { gtk_selection_model_select_item(model, 3, TRUE); }), IndexSet({3}));
    EXPECT_EQ(selected([&] { gtk_selection_model_select_range(model, 5, 3, FALSE); }),
              IndexSet({3, 5, 6, 7}));
    EXPECT_EQ(selected([&] { gtk_selection_model_unselect_item(model, 5); }), IndexSet({3, 6, 7}));
    GtkBitset *some = gtk_bitset_new_range(0, 2), *mask = gtk_bitset_new_range(1, 3);
    EXPECT_EQ(selected([&] { gtk_selection_model_set_selection(model, some, mask); }),
              IndexSet({1, 6, 7}));
    gtk_bitset_unref(some);
    gtk_bitset_unref(mask);
    EXPECT_EQ(selected([&] { gtk_selection_model_unselect_range(model, 5, 2); }), IndexSet({1, 7}));
    EXPECT_EQ(selected([&] { gtk_selection_model_select_all(model); }),
              IndexSet(IndexSet::Range{0, 10}));
    EXPECT_EQ(selected([&] { gtk_selection_model_unselect_all(model); }), IndexSet());
    list->setSelection({1, 2, 3, 8});
    GtkBitset* inRange = gtk_selection_model_get_selection_in_range(model, 2, 7);
    EXPECT_EQ(gtk_bitset_get_size(inRange), 3u);
    EXPECT_EQ(gtk_bitset_get_minimum(inRange), 2u);
    gtk_bitset_unref(inRange);
}

TEST(GtkListModel, RowsOutliveTheModelAndAreToldFromOthers) {
    const auto list = ManagedList<int>::create({7, 8});
    auto model = owned(GtkListModel<int>::create(list));
    const Row row = rowAt(model.get(), 0);
    Row other = rowAt(model.get(), 1);
    list->reverseOrder();
    other.reset();
    EXPECT_EQ(rowAt(model.get(), 1), row) << "one that goes takes no other along";
    EXPECT_EQ(rowAt(model.get(), 2), nullptr);
    model.reset();
    list->removeAllItems();
    EXPECT_EQ(GtkListModel<int>::item(row.get()), 7);
    const char* const message = "The object is no row of a list of such items.";
    EXPECT_DEATH(GtkListModel<Thing>::item(row.get()), message);
    const Row stranger = owned(g_object_new(G_TYPE_OBJECT, nullptr));
    EXPECT_DEATH(GtkListModel<int>::item(stranger.get()), message);
    const auto strange = owned(GTK_SELECTION_MODEL(gtk_no_selection_new(nullptr)));
    EXPECT_DEATH(GtkListModel<int>::itemsDidChange(strange.get(), {0}),
                 "The model is none over a list.");
}

template <class List, class Change>
void dropWhileToldOf(const std::shared_ptr<List>& list, const Change& change) {
    bool isGone = false;
    GtkSelectionModel* const model = GtkListModel<int>::create(list);
    g_object_weak_ref(
        G_OBJECT(model), +[](void* gone, GObject*) { *static_cast<bool*>(gone) = true; }, &isGone);
    const auto drop = +[](GListModel* told, guint, guint, guint) { g_object_unref(told); };
    g_signal_connect(model, "items-changed", G_CALLBACK(drop), nullptr);
    change();
    EXPECT_TRUE(isGone);
}

TEST(GtkListModel, MayBeDroppedWhileItTells) {
    const auto list = ManagedList<int>::create({7, 8});
    list->setSelection({0, 1});
    dropWhileToldOf(list, [&] { list->insert({5}, 0); });
    // Also of a change that another observer undoes before the model has been told of it.
    const auto undoes = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(ManagedList<int>::didReloadNotification), list, nullptr,
        [&](const Notification&) {
            if (list->count() == 4)
                list->remove({0});
        });
    dropWhileToldOf(list, [&] { list->insert({6}, 0); });
    EXPECT_EQ(list->items(), (std::vector{5, 7, 8}));
    const auto array = SelectableArray<int>::create();
    dropWhileToldOf(array, [&] { array->insert({1, 2}, 0); });
    EXPECT_EQ(array->count(), 2);
}

TEST(GtkModels, PicturesAreSharedWithTextures) {
    for (const BitmapLayout layout : {BitmapLayout::rgba, BitmapLayout::argb}) {
        Bitmap bitmap = *Bitmap::make(2, 1, layout);
        const bool isAlphaFirst = layout == BitmapLayout::argb;
        bitmap.data()[isAlphaFirst ? 0 : 3] = 200;
        bitmap.data()[isAlphaFirst ? 1 : 0] = 100;
        auto image = CGImage::create(std::move(bitmap));
        const std::weak_ptr<const CGImage> watched = image;
        GdkTexture* texture = toGdkTexture(image);
        image = nullptr;
        EXPECT_FALSE(watched.expired());
        std::array<std::uint32_t, 2> pixels;
        gdk_texture_download(texture, reinterpret_cast<guchar*>(pixels.data()), 8);
        EXPECT_THAT(pixels, ElementsAre(0xc8640000u, 0u));
        g_object_unref(texture);
        EXPECT_TRUE(watched.expired());
    }
    EXPECT_EQ(toGdkTexture(nullptr), nullptr);
}

TEST(GtkModels, AFactoryOfTextsMakesItsLabelsAndFillsThem) {
    const auto factory = owned(GtkListModel<int>::textFactory([](int) { return std::string(); }));
    for (const char* step : {"setup", "bind"}) {
        const guint signal = g_signal_lookup(step, G_OBJECT_TYPE(factory.get()));
        EXPECT_TRUE(g_signal_has_handler_pending(factory.get(), signal, 0, FALSE)) << step;
    }
}

TEST(GtkModels, TheMainQueueRunsOnTheLoopOfGLib) {
    GLibMainQueue::attach();
    const auto loopUntil = [](const bool& isDone) {
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (!isDone && std::chrono::steady_clock::now() < end)
            g_main_context_iteration(nullptr, FALSE);
    };
    bool hasRun = false;
    std::thread([&] {
        DispatchQueue::main()->async([&] {
            DispatchQueue::main()->async([&] { hasRun = true; });
            loopUntil(hasRun); // inside of the other loop
        });
    }).join();
    loopUntil(hasRun);
    EXPECT_TRUE(hasRun);
}

} // namespace
