#include "Sidebar.h"

#include "displayText.h"
#include "observe.h"

#include <set>
#include <utility>

using namespace zorvan;

std::shared_ptr<Sidebar> Sidebar::create(std::function<void(Album::Filter)> chosen) {
    const std::shared_ptr<Sidebar> sidebar(new Sidebar(std::move(chosen)));
    sidebar->start();
    return sidebar;
}

void Sidebar::start() {
    top_ = {std::make_shared<Line>(Line{.title = "All pictures"}),
            std::make_shared<Line>(
                Line{.title = "Folders", .field = &PictureFile::folder, .isHeading = true}),
            std::make_shared<Line>(
                Line{.title = "Kinds", .field = &PictureFile::kind, .isHeading = true})};
    outline_->setNumberOfColumns(1);
    scrollView_->addObserver(shared_from_this());
    outline_->setAccessibilityLabel("What is shown");
    scrollView_->setDocumentView(outline_);
    outline_->setOutlineDataSource(shared_from_this());
    outline_->selectOnlyRow(0);
    observe(NSTableView::selectionDidChangeNotification, outline_, shared_from_this(),
            [](const auto& self, const Notification&) { self->choose(); });
}

void Sidebar::frameDidChange() {
    constexpr double besides = 4; // what the frame of the scroll view takes
    outline_->tableColumns()[0]->setWidth(scrollView_->frame().width() - besides);
}

void Sidebar::show(const std::vector<PictureFile::Pointer>& pictures) {
    std::set<Item> chosen;
    for (const std::int64_t row : outline_->selectedRowIndexes())
        chosen.insert(outline_->item(row));
    isCounting_ = true;
    top_[0]->count = static_cast<std::int64_t>(pictures.size());
    for (std::size_t i = 1; i < top_.size(); ++i)
        top_[i]->lines = count(top_[i]->lines, top_[i]->field, pictures);
    outline_->reloadData();
    if (!std::exchange(isFilled_, !pictures.empty()))
        outline_->expandAllItems();
    IndexSet rows;
    for (const Item& item : chosen)
        if (const std::int64_t row = outline_->row(item); row >= 0)
            rows.insert(row);
    outline_->selectOnlyRows(rows.isEmpty() ? IndexSet{0} : rows);
    isCounting_ = false;
    if (rows.count() != static_cast<std::int64_t>(chosen.size()))
        choose();
}

/// A line for each value that the field has, those of before where they are the same.
Sidebar::Lines Sidebar::count(const Lines& before, std::string PictureFile::*field,
                              const std::vector<PictureFile::Pointer>& pictures) {
    const auto comes = [](const std::string& a, const std::string& b) { return comesBefore(a, b); };
    std::map<std::string, std::shared_ptr<Line>, decltype(comes)> lines(comes);
    for (const auto& line : before) {
        line->count = 0;
        lines[line->value] = line;
    }
    for (const PictureFile::Pointer& file : pictures) {
        const std::string& value = (*file).*field;
        auto& line = lines[value];
        if (!line)
            line = std::make_shared<Line>(Line{
                .title = value.empty() ? "At the top" : value, .field = field, .value = value});
        ++line->count;
    }
    Lines counted;
    for (const auto& [value, line] : lines)
        if (line->count > 0)
            counted.push_back(line);
    return counted;
}

void Sidebar::choose() {
    if (isCounting_)
        return;
    std::set<std::string> folders, kinds;
    bool isAll = outline_->selectedRowIndexes().isEmpty();
    for (const std::int64_t row : outline_->selectedRowIndexes()) {
        const auto& line = *static_cast<const Line*>(outline_->item(row).get());
        if (outline_->level(row) == 0)
            isAll = true;
        else
            (line.field == &PictureFile::folder ? folders : kinds).insert(line.value);
    }
    if (isAll)
        return chosen_({});
    chosen_([folders, kinds](const PictureFile& file) {
        return folders.contains(file.folder) || kinds.contains(file.kind);
    });
}

const Sidebar::Lines& Sidebar::linesOf(const Item& item) const {
    return item ? static_cast<const Line*>(item.get())->lines : top_;
}

std::int64_t Sidebar::numberOfChildren(const NSOutlineView&, const Item& item) const {
    return static_cast<std::int64_t>(linesOf(item).size());
}

Sidebar::Item Sidebar::child(const NSOutlineView&, std::int64_t index, const Item& item) const {
    return linesOf(item)[static_cast<std::size_t>(index)];
}

std::string Sidebar::text(const NSOutlineView&, std::int64_t, const Item& item) const {
    const auto& line = *static_cast<const Line*>(item.get());
    return line.isHeading ? line.title : line.title + " (" + std::to_string(line.count) + ")";
}
