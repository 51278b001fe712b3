// The XML document beside its minimum cost, in one run: compare the pairs of rows.

#include "stub_applet.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

/** The document of a handle, read with two calls. */
std::string documentOf(Fg_Struct* fg) {
    unsigned long size = 0;
    applet().document(fg, 0, nullptr, &size);
    std::string text(size, '\0');
    applet().document(fg, 0, text.data(), &size);
    text.resize(size - 1);
    return text;
}

std::vector<std::string_view> viewsOfLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(text.substr(0, text.find('\n') + 1));
        text.remove_prefix(lines.back().size());
    }
    return lines;
}

/** The text of the document, appended to a string stream line by line. */
std::string appended(const std::vector<std::string_view>& lines) {
    std::ostringstream text;
    for (const std::string_view line : lines)
        text << line;
    return std::move(text).str();
}

void document_size_baseline(benchmark::State& state) {
    StubHandle handle;
    const std::string text = documentOf(handle.fg());
    const std::vector<std::string_view> lines = viewsOfLines(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(appended(lines).size());
}

void document_size(benchmark::State& state) {
    StubHandle handle;
    for (auto _ : state) {
        unsigned long size = 0;
        benchmark::DoNotOptimize(applet().document(handle.fg(), 0, nullptr, &size));
    }
}

void document_copy_baseline(benchmark::State& state) {
    StubHandle handle;
    const std::string text = documentOf(handle.fg());
    const std::vector<std::string_view> lines = viewsOfLines(text);
    std::vector<char> buffer(text.size() + 1);
    for (auto _ : state) {
        const std::string copy = appended(lines);
        std::memcpy(buffer.data(), copy.c_str(), copy.size() + 1);
        benchmark::ClobberMemory();
    }
}

void document_copy(benchmark::State& state) {
    StubHandle handle;
    std::vector<char> buffer(documentOf(handle.fg()).size() + 1);
    for (auto _ : state) {
        unsigned long size = buffer.size();
        benchmark::DoNotOptimize(applet().document(handle.fg(), 0, buffer.data(), &size));
    }
}

BENCHMARK(document_size_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(document_size)->Unit(benchmark::kMicrosecond);
BENCHMARK(document_copy_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(document_copy)->Unit(benchmark::kMicrosecond);

} // namespace
