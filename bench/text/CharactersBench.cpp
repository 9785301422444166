#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/text/String.h>

#include <benchmark/benchmark.h>
#include <unicode/ubrk.h>
#include <unicode/utext.h>
#include <utf8proc.h>

#include <cstring>
#include <string>

namespace {

constexpr std::size_t bytes = 1 << 20;

std::string repeated(std::string_view piece) {
    std::string text;
    while (text.size() < bytes)
        text += piece;
    return text;
}

const std::string ascii = repeated("The quick brown fox jumps over the lazy dog. ");
const std::string lines = repeated("The quick brown fox jumps over the lazy dog.\r\n");
const std::string western = repeated("Les élèves étaient très fâchés à Nîmes; naïveté, cœur. ");
const std::string mixed = repeated("Straße 東京タワー e\u0301te\u0301 नमस्ते दुनिया 👩‍👩‍👧‍👦 "
                                   "🇩🇪🇫🇷 한국어 שלום plain words ");

std::size_t countByICU(UBreakIterator* iterator, const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    UText source = UTEXT_INITIALIZER;
    utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &status);
    ubrk_setUText(iterator, &source, &status);
    std::size_t count = 0;
    while (ubrk_next(iterator) != UBRK_DONE)
        ++count;
    utext_close(&source);
    return count;
}

std::size_t countByUtf8proc(const std::string& text) {
    std::size_t count = 0;
    utf8proc_int32_t previous = -1;
    utf8proc_int32_t state = 0;
    const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto size = static_cast<utf8proc_ssize_t>(text.size());
    for (utf8proc_ssize_t offset = 0; offset < size;) {
        utf8proc_int32_t current = 0;
        offset += utf8proc_iterate(data + offset, size - offset, &current);
        count += previous < 0 || utf8proc_grapheme_break_stateful(previous, current, &state);
        previous = current;
    }
    return count;
}

UBreakIterator* openIterator() {
    UErrorCode status = U_ZERO_ERROR;
    return ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
}

template <class Count>
void run(benchmark::State& state, const std::string& text, Count count) {
    for (auto _ : state)
        benchmark::DoNotOptimize(count(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void registerCounts(const char* name, const std::string& text) {
    const std::string workload = std::string("count ") + name + "/";
    const auto add = [&](const char* who, auto count) {
        benchmark::RegisterBenchmark((workload + who).c_str(),
                                     [&text, count](benchmark::State& s) { run(s, text, count); });
    };
    add("ours", [](const std::string& t) { return zorvan::characterCount(t); });
    add("ICU",
        [iterator = openIterator()](const std::string& t) { return countByICU(iterator, t); });
    add("utf8proc", countByUtf8proc);
}

void registerCut(const char* name, const std::string& text) {
    const std::string workload = std::string("cut half of ") + name + "/";
    const std::size_t half = zorvan::characterCount(text) / 2;
    benchmark::RegisterBenchmark((workload + "ours").c_str(), [&text, half](benchmark::State& s) {
        run(s, text,
            [half](const std::string& t) { return zorvan::advanceCharacters(t, 0, half).offset; });
    });
    benchmark::RegisterBenchmark((workload + "memchr").c_str(), [&text](benchmark::State& s) {
        run(s, text, [](const std::string& t) { return std::memchr(t.data(), 0, t.size() / 2); });
    });
}

const bool registered = [] {
    registerCounts("ASCII", ascii);
    benchmark::RegisterBenchmark("count ASCII/memchr", [](benchmark::State& s) {
        run(s, ascii, [](const std::string& t) { return std::memchr(t.data(), 0, t.size()); });
    });
    registerCounts("CR LF lines", lines);
    registerCounts("western text", western);
    registerCounts("mixed scripts", mixed);
    registerCut("ASCII", ascii);
    return true;
}();

} // namespace

BENCHMARK_MAIN();
