#include <tests/Testing.h>

#include <zorvan/platform/textservices/NSAttributedString.h>

using TextRun = NSAttributedString::Run;

namespace {

AttributeDictionary named(std::int64_t value) { return {{"x", value}}; }

/// A unit of the text with its attributes, which is what the runs stand for.
using Unit = std::pair<char, AttributeDictionary>;

std::vector<Unit> unitsOf(const NSAttributedString& text) {
    std::vector<Unit> units;
    const std::string characters = text.string();
    for (const TextRun& run : text.runs())
        for (std::size_t i = run.range.location; i < run.range.end(); ++i)
            units.emplace_back(characters[i], run.attributes);
    return units;
}

void expectSound(const NSAttributedString& text) {
    for (std::size_t i = 0; i < text.runs().size(); ++i) {
        ASSERT_GT(text.runs()[i].range.length, 0u);
        ASSERT_TRUE(i == 0 || text.runs()[i].attributes != text.runs()[i - 1].attributes);
    }
}

} // namespace

TEST(NSAttributedString, CountsInUTF16Units) {
    const NSAttributedString text("a😀é", named(1));
    EXPECT_EQ(text.length(), 4u);
    EXPECT_EQ(text.string(), "a😀é");
    EXPECT_EQ(NSAttributedString("\xFF").string(), "\uFFFD");
    EXPECT_EQ(text.attributedSubstring({1, 1}).string(), "\uFFFD"); // half a pair
}

TEST(NSAttributedString, RandomEditsKeepRunsSoundAndUnitsRight) {
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        NSMutableAttributedString text;
        std::vector<Unit> model;
        for (int step = 0; step < 30; ++step) {
            const std::size_t start = random() % (text.length() + 1);
            const NSRange range{start, random() % (text.length() - start + 1)};
            const auto begin = model.begin() + static_cast<std::ptrdiff_t>(start);
            const auto end = begin + static_cast<std::ptrdiff_t>(range.length);
            const auto value = static_cast<std::int64_t>(random() % 3);
            switch (random() % 6) {
            case 0: {
                const std::size_t length = random() % 4;
                text.replaceCharacters(range,
                                       NSAttributedString(std::string(length, 'n'), named(value)));
                model.insert(model.erase(begin, end), length, {'n', named(value)});
                break;
            }
            case 1: { // A text takes the attributes of what it replaces, or is put behind.
                AttributeDictionary inherited;
                if (!model.empty())
                    inherited = model[range.length == 0 && start > 0 ? start - 1 : start].second;
                text.replaceCharacters(range, "t");
                model.insert(model.erase(begin, end), {'t', inherited});
                break;
            }
            case 2:
                text.addAttribute("y", value, range);
                for (auto unit = begin; unit != end; ++unit)
                    unit->second["y"] = value;
                break;
            case 3:
                text.removeAttribute("y", range);
                for (auto unit = begin; unit != end; ++unit)
                    unit->second.erase("y");
                break;
            case 4: { // itself, and attributes of its own
                if (model.empty() || model.size() > 40)
                    break;
                text.setAttributes(text.runs().back().attributes, range);
                for (auto unit = begin; unit != end; ++unit)
                    unit->second = model.back().second;
                const std::vector<Unit> whole = model;
                text.replaceCharacters(range, text);
                text.append(text);
                const auto place = model.erase(begin, end);
                model.insert(place, whole.begin(), whole.end());
                const std::vector<Unit> twice = model;
                model.insert(model.end(), twice.begin(), twice.end());
                break;
            }
            default:
                text.setAttributes(named(value), range);
                for (auto unit = begin; unit != end; ++unit)
                    unit->second = named(value);
            }
            expectSound(text);
            ASSERT_EQ(unitsOf(text), model);
            const auto third = static_cast<std::ptrdiff_t>(model.size() / 3);
            const NSAttributedString part =
                text.attributedSubstring({model.size() / 3, model.size() / 3});
            expectSound(part);
            ASSERT_EQ(unitsOf(part), std::vector(model.begin() + third, model.begin() + 2 * third));
        }
    }
}

TEST(NSAttributedString, RemovesTheAttributeWhoseNameItHolds) {
    NSMutableAttributedString text("ab", {{"an attribute with a long name", true}});
    text.addAttribute("other", true, {0, 1});
    text.removeAttribute(text.runs()[0].attributes.begin()->first, {0, 2});
    EXPECT_TRUE(text.runs()[1].attributes.empty());
}

TEST(NSAttributedStringDeathTest, StopsOnARangeOutside) {
    NSMutableAttributedString text(NSAttributedString("ab"));
    EXPECT_DEATH(text.replaceCharacters({1, 2}, ""),
                 "^Range is out of bounds: 2 from 1 on in a text of 2\n$");
    EXPECT_DEATH((void)text.attributedSubstring({1, SIZE_MAX}), "^Range is out of bounds: 18446");
    EXPECT_DEATH((void)text.runAt(2), "^Range is out of bounds: 1 from 2 on in a text of 2\n$");
}
