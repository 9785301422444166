#include <tests/Testing.h>

#include <zorvan/platform/textservices/NSAttributedString.h>

using TextRun = NSAttributedString::Run;

namespace {

AttributeDictionary named(std::int64_t value) { return {{"x", value}}; }

/// The attributes of each unit, which is what the runs stand for.
std::vector<AttributeDictionary> unitAttributes(const NSAttributedString& text) {
    std::vector<AttributeDictionary> result;
    for (const TextRun& run : text.runs())
        result.insert(result.end(), run.range.length, run.attributes);
    return result;
}

void expectSound(const NSAttributedString& text) {
    std::size_t location = 0;
    for (std::size_t i = 0; i < text.runs().size(); ++i) {
        const TextRun& run = text.runs()[i];
        ASSERT_EQ(run.range.location, location);
        ASSERT_GT(run.range.length, 0u);
        if (i > 0) {
            ASSERT_NE(run.attributes, text.runs()[i - 1].attributes);
        }
        location = run.range.end();
    }
    ASSERT_EQ(location, text.length());
}

} // namespace

TEST(NSAttributedString, CountsInUTF16Units) {
    const NSAttributedString text("a😀é", named(1));
    EXPECT_EQ(text.length(), 4u);
    EXPECT_EQ(text.string(), "a😀é");
    EXPECT_EQ(text.runs(), (std::vector{TextRun{{0, 4}, named(1)}}));
    EXPECT_EQ(NSAttributedString("\xFF").string(), "\uFFFD");
    EXPECT_EQ(text.attributedSubstring({1, 1}).string(), "\uFFFD"); // half a pair
    EXPECT_TRUE(NSAttributedString("").runs().empty());
}

TEST(NSAttributedString, ReplacementInheritsAttributes) {
    NSMutableAttributedString text(NSAttributedString("ab", named(1)));
    text.append(NSAttributedString("cd", named(2)));
    text.replaceCharacters({1, 2}, "XYZ");
    EXPECT_EQ(text.string(), "aXYZd");
    EXPECT_EQ(text.runs(), (std::vector{TextRun{{0, 4}, named(1)}, TextRun{{4, 1}, named(2)}}));
    text.replaceCharacters({5, 0}, "!");
    EXPECT_EQ(text.runAt(5).attributes, named(2));
    text.replaceCharacters({0, 0}, "?");
    EXPECT_EQ(text.runAt(0).attributes, named(1));
    text.replaceCharacters({0, text.length()}, "");
    EXPECT_TRUE(text.runs().empty());
}

TEST(NSAttributedString, TakesItselfAsAnArgument) {
    NSMutableAttributedString text(NSAttributedString("ab", named(1)));
    text.append(NSAttributedString("c", named(2)));
    text.append(text);
    EXPECT_EQ(text.string(), "abcabc");
    expectSound(text);
    text.replaceCharacters({1, 1}, text);
    EXPECT_EQ(text.string(), "aabcabccabc");
    expectSound(text);
    text.setAttributes(text.runAt(4).attributes, {3, 5});
    expectSound(text);
    const NSAttributedString copy = text;
    text.addAttribute("y", true, {0, 1});
    EXPECT_NE(copy, text);
}

TEST(NSAttributedString, RandomEditsKeepRunsSoundAndUnitsRight) {
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        NSMutableAttributedString text;
        std::vector<AttributeDictionary> model;
        for (int step = 0; step < 30; ++step) {
            const std::size_t start = random() % (text.length() + 1);
            const NSRange range{start, random() % (text.length() - start + 1)};
            const auto begin = model.begin() + static_cast<std::ptrdiff_t>(start);
            const auto end = begin + static_cast<std::ptrdiff_t>(range.length);
            const auto value = static_cast<std::int64_t>(random() % 3);
            switch (random() % 4) {
            case 0: {
                const std::size_t length = random() % 4;
                text.replaceCharacters(range,
                                       NSAttributedString(std::string(length, 'n'), named(value)));
                model.insert(model.erase(begin, end), length, named(value));
                break;
            }
            case 1:
                text.addAttribute("y", value, range);
                for (auto unit = begin; unit != end; ++unit)
                    (*unit)["y"] = value;
                break;
            case 2:
                text.removeAttribute("y", range);
                for (auto unit = begin; unit != end; ++unit)
                    unit->erase("y");
                break;
            default:
                text.setAttributes(named(value), range);
                std::fill(begin, end, named(value));
            }
            expectSound(text);
            ASSERT_EQ(unitAttributes(text), model);
            const NSAttributedString part = text.attributedSubstring({0, text.length() / 2});
            expectSound(part);
            ASSERT_EQ(unitAttributes(part),
                      std::vector(model.begin(),
                                  model.begin() + static_cast<std::ptrdiff_t>(model.size() / 2)));
        }
    }
}

TEST(NSAttributedStringDeathTest, StopsOnARangeOutside) {
    NSMutableAttributedString text(NSAttributedString("ab"));
    EXPECT_DEATH(text.replaceCharacters({1, 2}, ""),
                 "^Range is out of bounds: 2 from 1 on in a text of 2\n$");
    EXPECT_DEATH(text.addAttribute("x", true, {3, 0}), "^Range is out of bounds: 0 from 3 on");
    EXPECT_DEATH((void)text.attributedSubstring({1, SIZE_MAX}), "^Range is out of bounds: 18446");
    EXPECT_DEATH((void)text.runAt(2), "^Range is out of bounds: 1 from 2 on in a text of 2\n$");
}
