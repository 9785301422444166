#include <tests/Testing.h>
#include <tests/bytesOf.h>
#include <tests/files/TemporaryFolder.h>
#include <tests/outputOf.h>

#include <zorvan/text/NSAttributedString.h>

using testing::HasSubstr;
using testing::Not;

namespace {

struct Opaque {
    double r, b, g, a;
};

NSMutableAttributedString sample() {
    NSMutableAttributedString text;
    append(text, "Bold", {{AttributeName::font, TextFont{"Times", 14, true, false}}});
    append(text, " & <red>",
           {{AttributeName::foregroundColor, TextColor(1, 0, 0)},
            {AttributeName::underlineStyle, true}});
    append(text, "\nlink {x} \\ é 😀",
           {{AttributeName::link, std::string("https://example.com/?a=1&b=2")},
            {AttributeName::alignment, TextAlignment::center}});
    append(text, "2", {{AttributeName::superscript, std::int64_t{1}}});
    return text;
}

std::string rtfText(const NSAttributedString& text) { return textOf(*rtf(text)); }

void expectIn(const std::string& document, const std::vector<std::string>& parts) {
    for (const std::string& part : parts)
        EXPECT_THAT(document, HasSubstr(part));
}

/// What a program prints when it is given `document` as a file.
std::string read(const std::string& command, const std::string& document) {
    const TemporaryFolder folder;
    folder.file("document", document);
    return outputOf(command + " " + folder.url("document").path());
}

} // namespace

TEST(AttributedText, IsBuiltAndChanged) {
    const AttributeDictionary bold = {{"NSFont", TextFont{"Times", 12, true, false}}};
    NSMutableAttributedString text = mutableFormat(bold, "ab");
    append(text, "c", {});
    replaceAllCharacters(text, "xyz");
    EXPECT_EQ(text, format(bold, "xyz"));
    addForegroundColor(text, Opaque{.r = 1, .b = 0.25, .g = 0.5, .a = 0.75});
    EXPECT_EQ(*attribute<TextColor>(text.runs().front().attributes, AttributeName::foregroundColor),
              TextColor(1, 0.5, 0.25, 0.75));
    EXPECT_EQ(update(bold, NSAttributedString("ab")), format(bold, "ab"));
    replaceAllCharacters(text, "");
    EXPECT_TRUE(isEmpty(text));
}

TEST(AttributedText, HTMLHoldsTextAndAttributes) {
    const std::string html = *htmlDocument(sample());
    expectIn(html,
             {"font-weight:bold;\">Bold</span>", "<sup>2</sup>",
              "color:rgba(255,0,0,1);text-decoration:underline;\"> &amp; &lt;red&gt;</span></p>",
              "<p style=\"text-align:center\"><a href=\"https://example.com/?a=1&amp;b=2\">"});
    expectIn(*htmlDocument(format({{"NSFont", TextFont{"x", 12.346, false, false}}}, "x")),
             {"font-size:12.35pt;"});
    EXPECT_EQ(read("xmllint --html --noout", html), "");
    EXPECT_EQ(read("xmllint --html --xpath 'string(//body)'", html),
              "\nBold & <red>\nlink {x} \\ é 😀2\n\n");
}

TEST(AttributedText, HTMLLetsNothingOut) {
    const auto linked = [](const char* link) {
        return *htmlDocument(format({{"NSLink", std::string(link)}}, "x"));
    };
    const AttributeDictionary hostile = {{"NSLink", std::string("java\tscript:alert(1)")},
                                         {"NSFont", TextFont{"x';}\"><script>", -1, false, false}}};
    const std::string html = *htmlDocument(format(hostile, "</p>\"'\x01\xFF"));
    EXPECT_THAT(html, Not(HasSubstr("<script>")));
    EXPECT_THAT(html, Not(HasSubstr("href")));
    expectIn(html, {"&lt;/p&gt;&quot;&#39;\uFFFD\uFFFD"});
    for (const char* link : {"javascript:x", "JavaScript:x", " javascript:x", "data:text/html,x",
                             "vbscript:x", "file:///etc/passwd", "https://x y"})
        EXPECT_THAT(linked(link), Not(HasSubstr("href"))) << link;
    for (const char* link : {"http://x", "HTTPS://x", "mailto:a@b.cd", "page.html?a:b", "#top"})
        EXPECT_THAT(linked(link), HasSubstr("href")) << link;
}

TEST(AttributedText, ParagraphsEndAsTheyAreWritten) {
    const std::pair<std::string_view, std::string> table[] = {
        {"", ""},
        {"a\n", "<p>a</p>\n"},
        {"a\r\nb", "<p>a</p>\n<p>b</p>\n"},
        {"\n\nb", "<p><br></p>\n<p><br></p>\n<p>b</p>\n"},
        {"a\u2029b\u2028c", "<p>a</p>\n<p>b<br>c</p>\n"},
    };
    for (const auto& [text, body] : table)
        expectIn(*htmlDocument(NSAttributedString(text)), {"<body>\n" + body + "</body>"});
}

// A carriage return and its line feed end one paragraph, wherever attributes begin.
TEST(AttributedText, AttributesCutNoEndOfAParagraph) {
    NSMutableAttributedString text(NSAttributedString("a\r\nb"));
    addForegroundColor(text, Opaque{1, 0, 0, 1});
    text.setAttributes({}, {2, 1});
    EXPECT_THAT(rtfText(text), testing::ContainsRegex("a}\\\\par\n\\\\pard\\\\ql [^\n]*b}}\n"));
}

TEST(AttributedText, RTFIsReadBack) {
    const std::string document = rtfText(sample());
    EXPECT_TRUE(std::all_of(document.begin(), document.end(),
                            [](char c) { return static_cast<unsigned char>(c) < 0x80; }));
    expectIn(document, {"{\\fonttbl{\\f0\\fnil Helvetica;}{\\f1\\fnil Times;}}",
                        "{\\f1\\fs28\\b Bold}", "\\{x\\} \\\\ \\u233? \\u-10179?\\u-8704?",
                        "HYPERLINK \"https://example.com/?a=1&b=2\""});
    NSMutableAttributedString text = sample();
    text.removeAttribute(AttributeName::link, {0, text.length()}); // which unrtf does not read
    expectIn(read("unrtf --html --quiet", rtfText(text)),
             {"<b>Bold</b>", "<font color=\"#ff0000\"><u> &amp; &lt;red&gt;</u></font>", "<center>",
              "link {x} \\ &eacute;", "<sup>2</sup>"});
}

TEST(AttributedText, ParagraphsAreAligned) {
    const std::tuple<TextAlignment, const char*, const char*> table[] = {
        {TextAlignment::left, "\\pard\\ql ", "<p>x"},
        {TextAlignment::right, "\\pard\\qr ", "<p style=\"text-align:right\">x"},
        {TextAlignment::center, "\\pard\\qc ", "<p style=\"text-align:center\">x"},
        {TextAlignment::justified, "\\pard\\qj ", "<p style=\"text-align:justify\">x"},
    };
    for (const auto& [alignment, inRTF, inHTML] : table) {
        const auto text = format({{AttributeName::alignment, alignment}}, "x");
        expectIn(rtfText(text), {inRTF});
        expectIn(*htmlDocument(text), {inHTML});
    }
}

TEST(AttributedText, RTFBracesBalance) {
    for (const std::string_view text :
         {"", "}}}", "{\\rtf1", "a\r\nb\tc\u2028d", "\x01\x7F\xFF", "\\'e9"}) {
        const AttributeDictionary odd = {{"NSFont", TextFont{"a;}b{\\", 1e300, false, true}},
                                         {"NSLink", std::string("https://x/\"}{\\*")},
                                         {"NSBackgroundColor", TextColor(-1, 2, 0.5)}};
        const std::string document = rtfText(format(odd, text));
        int depth = 0;
        for (std::size_t i = 0; i < document.size(); ++i) {
            if (document[i] == '\\')
                ++i;
            else
                depth += document[i] == '{' ? 1 : document[i] == '}' ? -1 : 0;
            ASSERT_GE(depth, i + 2 < document.size() ? 1 : 0);
        }
        EXPECT_EQ(depth, 0);
    }
}
