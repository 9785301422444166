#include <tests/Testing.h>

#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/text/String.h>

#include <sys/resource.h>

namespace {

/// The plain table and the walk back over it.
std::string plainly(const std::string& first, const std::string& second) {
    const auto spelt = [](const std::string& text) {
        const Characters characters(text);
        return std::vector<std::string>(characters.begin(), characters.end());
    };
    const auto canonical = [](std::vector<std::string> characters) {
        for (std::string& character : characters)
            character = canonicalCharacter(character);
        return characters;
    };
    const auto spelling = spelt(first);
    const auto a = canonical(spelling), b = canonical(spelt(second));
    std::vector<std::vector<int>> table(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j)
            table[i][j] = a[i - 1] == b[j - 1] ? table[i - 1][j - 1] + 1
                                               : std::max(table[i - 1][j], table[i][j - 1]);
    std::string result;
    for (std::size_t i = a.size(), j = b.size(); i >= 1 && j >= 1;) {
        if (table[i][j] == table[i][j - 1])
            --j;
        else if (table[i][j] == table[i - 1][j])
            --i;
        else {
            result.insert(0, spelling[--i]);
            --j;
        }
    }
    return result;
}

std::string randomText(std::mt19937& random, std::size_t length,
                       const std::vector<std::string>& alphabet) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += alphabet[random() % alphabet.size()];
    return text;
}

} // namespace

TEST(CommonSubsequence, FoldsItsStrings) {
    EXPECT_EQ(commonSubsequence({}), std::nullopt);
    EXPECT_EQ(commonSubsequence({"abc"}), "abc");
    EXPECT_EQ(commonSubsequence({"ABCBDAB", "BDCABA"}), "BDAB");
    EXPECT_EQ(commonSubsequence({"abcdef", "acef", "aef"}), "aef");
}

TEST(CommonSubsequence, AgreesWithThePlainTable) {
    const std::vector<std::vector<std::string>> alphabets = {
        {"a", "b"},
        {"a", "b", "c", "d"},
        {"K", "\u212A", "é", "e\u0301", "e", "\xFF", "中", "🇩🇪"},
        {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n"},
    };
    std::mt19937 random(1);
    for (int round = 0; round < 4000; ++round) {
        const auto& alphabet = alphabets[random() % alphabets.size()];
        const std::size_t longest = round % 20 == 0 ? 300 : 24;
        const std::string a = randomText(random, random() % longest, alphabet);
        const std::string b = randomText(random, random() % longest, alphabet);
        ASSERT_EQ(commonSubsequence({a, b}), plainly(a, b)) << a << " | " << b;
    }
}

// Texts so long that rows are dropped and computed again.
TEST(CommonSubsequence, AgreesWithThePlainTableAcrossBlocks) {
    std::mt19937 random(4);
    std::vector<std::string> many;
    for (char16_t c = 0x4E00; c < 0x4E00 + 2000; ++c)
        many.push_back(utf8FromUTF16({&c, 1}));
    for (const auto& alphabet : {std::vector<std::string>{"a", "b", "c"}, many}) {
        const std::string longer = randomText(random, 9'000, alphabet);
        const std::string shorter = randomText(random, 1'000, alphabet);
        EXPECT_EQ(commonSubsequence({longer, shorter}), plainly(longer, shorter));
    }
}

TEST(CommonSubsequence, TakesTwoStringsOf100000Characters) {
    std::mt19937 random(6);
    const std::vector<std::string> alphabet = {"a", "c", "g", "t"};
    const std::string a = randomText(random, 100'000, alphabet);
    std::string b = a;
    for (int i = 0; i < 1000; ++i)
        b.erase(random() % b.size(), 1);
    EXPECT_EQ(commonSubsequence({a, b}), b);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 1'500'000); // kilobytes; the table would take forty gigabytes
}
