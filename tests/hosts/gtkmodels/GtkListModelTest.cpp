// Models of GTK over lists, without a display.

#include "tests/hosts/Things.h"

#include <zorvan/hosts/gtkmodels/GLibMainQueue.h>
#include <zorvan/hosts/gtkmodels/GdkTexture.h>
#include <zorvan/hosts/gtkmodels/GtkListModel.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <gtk/gtk.h>

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Model = std::unique_ptr<GtkSelectionModel, Unref>;
using Row = std::unique_ptr<void, Unref>;

Row rowAt(GtkSelectionModel* model, guint at) {
    return Row(g_list_model_get_item(G_LIST_MODEL(model), at));
}
int selfAt(GtkSelectionModel* model, guint at) {
    return GtkListModel<Thing>::item(rowAt(model, at).get()).self;
}

/// Keeps by the signals alone what a model shows and has selected, as a view would, with the
/// objects of all rows held.
class Watcher {
public:
    explicit Watcher(GtkSelectionModel* model) : model_(model) {
        read(0, g_list_model_get_n_items(G_LIST_MODEL(model)));
        g_signal_connect(
            model, "items-changed",
            G_CALLBACK(+[](GListModel*, guint at, guint removed, guint added, Watcher* self) {
                const auto first = self->rows_.begin() + at;
                self->rows_.erase(first, first + removed);
                self->read(at, added);
                ++self->changes;
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

    std::vector<int> shown() const {
        std::vector<int> selves;
        for (const Entry& row : rows_)
            selves.push_back(row.self);
        return selves;
    }
    IndexSet selection() const {
        IndexSet selected;
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i].isSelected)
                selected.insert(static_cast<std::int64_t>(i));
        return selected;
    }
    /// Whether the rows have the objects still that they had.
    bool keepsObjects() const {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rowAt(model_, static_cast<guint>(i)) != rows_[i].object)
                return false;
        return true;
    }
    /// By what they are of.
    std::map<int, Row> objects() const {
        std::map<int, Row> objects;
        for (const Entry& row : rows_)
            objects[row.self].reset(g_object_ref(row.object.get()));
        return objects;
    }

    int changes = 0;

private:
    struct Entry {
        int self;
        bool isSelected;
        Row object;
    };

    void read(guint at, guint count) {
        std::vector<Entry> added;
        for (guint i = at; i < at + count; ++i)
            added.push_back({selfAt(model_, i), gtk_selection_model_is_selected(model_, i) != FALSE,
                             rowAt(model_, i)});
        rows_.insert(rows_.begin() + at, std::make_move_iterator(added.begin()),
                     std::make_move_iterator(added.end()));
    }

    GtkSelectionModel* model_;
    std::vector<Entry> rows_;
};

void expectShown(const Watcher& watcher, const std::vector<Thing>& items, const IndexSet& selection,
                 const std::map<int, Row>& objectsBefore) {
    ASSERT_EQ(watcher.shown(), selvesOf(items));
    ASSERT_EQ(watcher.selection(), selection);
    ASSERT_TRUE(watcher.keepsObjects());
    for (const auto& [self, object] : watcher.objects())
        if (objectsBefore.contains(self)) {
            ASSERT_EQ(object, objectsBefore.at(self)) << "of thing " << self;
        }
}

TEST(GtkListModel, FollowsAManagedListThroughThousandsOfChanges) {
    Changes changes(1);
    const auto list = ManagedList<Thing>::create(changes.things(30));
    const Model model(GtkListModel<Thing>::create(list));
    const Watcher watcher(model.get());
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE(i);
        const auto objects = watcher.objects();
        const std::int64_t kind = changes.below(8);
        if (kind == 0)
            list->reverseOrder();
        else if (kind == 1)
            list->setFilter([r = changes.below(3)](const Thing& t) { return t.self % 3 != r; });
        else if (kind == 2)
            list->setFilter({});
        else if (!list->filter()) // through one, equal things are mistaken for each other
            change(*list, changes, changes.below(7));
        ASSERT_NO_FATAL_FAILURE(expectShown(watcher, list->items(), list->selection(), objects));
        if (list->allItems().size() > 100) {
            list->setFilter({});
            list->removeAllItems();
        }
    }
}

TEST(GtkListModel, FollowsASelectableArrayThroughThousandsOfChanges) {
    Changes changes(1);
    const auto array = SelectableArray<Thing>::create();
    const Model model(GtkListModel<Thing>::create(array));
    const Watcher watcher(model.get());
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE(i);
        const auto objects = watcher.objects();
        change(*array, changes, changes.below(7));
        ASSERT_NO_FATAL_FAILURE(
            expectShown(watcher, array->elements(), array->selection(), objects));
        if (array->count() > 100)
            array->removeAllElements();
    }
}

TEST(GtkListModel, TellsOnlyOfTheRowsThatChange) {
    const auto list = ManagedList<int>::create({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    const Model model(GtkListModel<int>::create(list));
    std::vector<std::array<guint, 3>> told;
    g_signal_connect(
        model.get(), "items-changed",
        G_CALLBACK(+[](GListModel*, guint at, guint removed, guint added, decltype(told)* to) {
            to->push_back({at, removed, added});
        }),
        &told);
    using Told = std::array<guint, 3>;
    const std::pair<std::function<void()>, std::vector<Told>> cases[]{
        {[&] {
             list->insert({10, 11}, 4);
         },
         {Told{4, 0, 2}}},
        {[&] {
             list->remove({4, 5});
         },
         {Told{4, 2, 0}}},
        {[&] { list->move({2}, 5); }, {Told{2, 3, 3}}},
        {[&] { list->sort(std::less<>()); }, {Told{2, 3, 3}}},
        {[&] { list->sort(std::less<>()); }, {}},
        {[&] { list->setFilter([](int i) { return i != 3 && i != 6; }); }, {Told{3, 4, 2}}},
        {[&] { list->setSelection({1}); }, {}},
        {[&] {
             GtkListModel<int>::itemsDidChange(model.get(), {1, 2, 5, 99});
         },
         {Told{1, 2, 2}, Told{5, 1, 1}}}};
    for (const auto& [run, expected] : cases) {
        told.clear();
        run();
        EXPECT_EQ(told, expected);
    }
}

TEST(GtkListModel, SelectsBothWays) {
    const auto list = ManagedList<int>::create({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    const Model held(GtkListModel<int>::create(list));
    GtkSelectionModel* model = held.get();
    const auto bits = [](std::initializer_list<guint> members) {
        GtkBitset* set = gtk_bitset_new_empty();
        for (const guint member : members)
            gtk_bitset_add(set, member);
        return set;
    };
    const std::pair<std::function<void()>, IndexSet> cases[]{
        {[&] { gtk_selection_model_select_item(model, 3, TRUE); }, {3}},
        {[&] { gtk_selection_model_select_range(model, 5, 2, FALSE); }, {3, 5, 6}},
        {[&] { gtk_selection_model_unselect_item(model, 5); }, {3, 6}},
        {[&] {
             GtkBitset *selected = bits({0, 1, 9}), *mask = bits({0, 3, 9});
             gtk_selection_model_set_selection(model, selected, mask);
             gtk_bitset_unref(selected);
             gtk_bitset_unref(mask);
         },
         {0, 6, 9}},
        {[&] { gtk_selection_model_unselect_range(model, 5, 5); }, {0}},
        {[&] { gtk_selection_model_select_all(model); }, IndexSet(IndexSet::Range{0, 10})},
        {[&] { gtk_selection_model_unselect_all(model); }, {}}};
    for (const auto& [run, selection] : cases) {
        run();
        EXPECT_EQ(list->selection(), selection);
    }
    list->setSelection({1, 2, 3, 8});
    GtkBitset* selected = gtk_selection_model_get_selection_in_range(model, 2, 7);
    EXPECT_EQ(gtk_bitset_get_size(selected), 3u);
    EXPECT_EQ(gtk_bitset_get_minimum(selected), 2u);
    gtk_bitset_unref(selected);
}

TEST(GtkListModel, RowsOutliveTheModelAndAreToldFromOthers) {
    const auto list = ManagedList<int>::create({7, 8});
    Model model(GtkListModel<int>::create(list));
    const Row row = rowAt(model.get(), 0);
    EXPECT_EQ(rowAt(model.get(), 2), nullptr);
    model.reset();
    list->removeAllItems();
    EXPECT_EQ(GtkListModel<int>::item(row.get()), 7);
    EXPECT_DEATH(GtkListModel<Thing>::item(row.get()),
                 "The object is no row of a list of such items.");
    const Row other(g_object_new(G_TYPE_OBJECT, nullptr));
    EXPECT_DEATH(GtkListModel<int>::item(other.get()),
                 "The object is no row of a list of such items.");
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

TEST(GtkModels, TheMainQueueRunsOnTheLoopOfGLib) {
    GLibMainQueue::attach();
    bool hasRun = false;
    std::thread([&] { DispatchQueue::main()->async([&] { hasRun = true; }); }).join();
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (!hasRun && std::chrono::steady_clock::now() < end)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_TRUE(hasRun);
}

} // namespace
