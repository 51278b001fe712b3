#include "serve/http/routes/page_files.h"

#include "serve/http/protocol/HttpError.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

// The build generates the table: EMBEDDED(symbol, name) for each file.
#define EMBEDDED(symbol, name) extern "C" const char symbol##_begin[], symbol##_end[];
#include <page_files.inc>
#undef EMBEDDED

namespace serve {
namespace {

const PageFile files[] = {
#define EMBEDDED(symbol, name)                                                                               \
    {name, {symbol##_begin, static_cast<std::size_t>(symbol##_end - symbol##_begin)}},
#include <page_files.inc>
#undef EMBEDDED
};

std::string typeOf(std::string_view name) {
    constexpr std::pair<std::string_view, const char*> types[] = {{".html", "text/html; charset=utf-8"},
                                                                  {".js", "text/javascript; charset=utf-8"},
                                                                  {".css", "text/css; charset=utf-8"},
                                                                  {".json", "application/json"},
                                                                  {".svg", "image/svg+xml"},
                                                                  {".png", "image/png"}};
    const auto* const found =
        std::ranges::find_if(types, [&](const auto& type) { return name.ends_with(type.first); });
    return found == std::end(types) ? "application/octet-stream" : found->second;
}

/** A hash of the content: FNV-1a. */
std::string tagOf(std::string_view content) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : content)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    return '"' + std::to_string(hash) + '"';
}

} // namespace

const PageFile* findPageFile(std::string_view name) {
    const auto* const found = std::ranges::find(files, name, &PageFile::name);
    return found == std::end(files) ? nullptr : found;
}

HttpAnswer fileAnswer(const PageFile& file, const HttpRequest& request) {
    const std::string tag = tagOf(file.content);
    HttpAnswer answer{.type = typeOf(file.name), .headers = {{"ETag", tag}, {"Cache-Control", "no-cache"}}};
    if (request.knownTag == tag)
        answer.status = status::notModified;
    else
        answer.body = std::make_shared<const std::string>(file.content);
    return answer;
}

} // namespace serve
