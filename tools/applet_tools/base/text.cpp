#include "applet_tools/base/text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace applet_tools {

using applet_host::isContinuation;

namespace {

unsigned char byteAt(std::string_view text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

} // namespace

std::string printable(std::string_view given) {
    constexpr char digits[] = "0123456789abcdef";
    const std::string text = toUtf8(given);
    std::string shown;
    const auto escape = [&](const char* prefix, unsigned char byte) {
        shown += prefix;
        shown += digits[byte >> 4];
        shown += digits[byte & 0x0F];
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char byte = byteAt(text, i);
        // U+0080 to U+009F are control characters too, and some terminals execute them.
        const bool isUpperControl =
            byte == 0xC2 && i + 1 < text.size() && (byteAt(text, i + 1) & 0xE0) == 0x80;
        if (isUpperControl) {
            escape("\\u00", byteAt(text, ++i));
        } else if (byte < 0x20 || byte == 0x7F) {
            escape("\\x", byte);
        } else {
            shown += text[i];
        }
    }
    return shown;
}

std::string inQuotes(std::string_view text) {
    std::string marked;
    for (const char c : text) {
        if (c == '"' || c == '\\') marked += '\\';
        marked += c;
    }
    return '"' + printable(marked) + '"';
}

std::string quotedText(const std::string& text) { return inQuotes(toUtf8(text)); }

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    bool isInSequence = false;
    for (const char c : text) {
        if (c == '\033') isInSequence = true;
        if (!isInSequence && !isContinuation(c)) ++width;
        if (c == 'm') isInSequence = false;
    }
    return width;
}

namespace {

/** The whole characters in this many bytes. */
std::string beginningOf(const std::string& text, std::size_t mostBytes) {
    std::size_t end = std::min(mostBytes, text.size());
    while (end > 0 && end < text.size() && isContinuation(text[end]))
        --end;
    return text.substr(0, end);
}

std::string wholeLength(const std::string& text) { return "... (" + std::to_string(text.size()) + " bytes)"; }

} // namespace

std::string shortened(const std::string& text, std::size_t mostBytes) {
    return text.size() <= mostBytes ? text : beginningOf(text, mostBytes) + wholeLength(text);
}

std::string quotedBeginning(const std::string& text, std::size_t mostBytes) {
    const std::string shown = toUtf8(text);
    if (shown.size() <= mostBytes) return inQuotes(shown);
    return inQuotes(beginningOf(shown, mostBytes)) + wholeLength(text);
}

std::string inQuotedWord(std::string_view word) {
    constexpr std::size_t mostBytes = 100;
    return "'" + shortened(printable(word), mostBytes) + "'";
}

std::string asShellWord(std::string_view word) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./+,:@%=";
    const bool isPlain = !word.empty() && word.find_first_not_of(plain) == std::string_view::npos;
    return isPlain ? std::string(word) : quotedText(std::string(word));
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string joined;
    for (const std::string& part : parts) {
        if (&part != &parts.front()) joined += separator;
        joined += part;
    }
    return joined;
}

std::string enumerated(std::vector<std::string> parts) {
    if (parts.size() < 2) return join(parts, "");
    const std::string last = std::move(parts.back());
    parts.pop_back();
    return join(parts, ", ") + " and " + last;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
    // For such different words the exact distance is useless, and its table is expensive.
    constexpr std::size_t farthest = 64;
    const std::size_t least = std::max(a.size(), b.size()) - std::min(a.size(), b.size());
    if (least > farthest) return least;
    std::vector<std::size_t> row(b.size() + 1), above, second; // the rows above it, the nearest first
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        second = std::exchange(above, row);
        row[0] = i + 1;
        for (std::size_t k = 0; k < b.size(); ++k) {
            row[k + 1] = std::min({above[k] + (a[i] == b[k] ? 0 : 1), row[k] + 1, above[k + 1] + 1});
            if (i > 0 && k > 0 && a[i] == b[k - 1] && a[i - 1] == b[k])
                row[k + 1] = std::min(row[k + 1], second[k - 1] + 1);
        }
    }
    return row.back();
}

std::size_t farthestTypo(std::string_view word) { return std::max<std::size_t>(1, (word.size() + 1) / 3); }

std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t mostWords = 3, ofPart = 2;
    const auto comparable = [](std::string_view text) {
        std::string lower = lowerCase(text);
        if (lower.starts_with("fg_")) lower.erase(0, 3);
        std::erase_if(lower, [](char c) { return c == '_' || c == ' ' || c == '-'; });
        return lower;
    };
    const auto isPartOf = [](const std::string& part, const std::string& whole) {
        return part.size() > 2 && whole.find(part) != std::string::npos;
    };
    const std::string wanted = comparable(word);
    const std::size_t farthest = farthestTypo(wanted);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::string known = comparable(candidate);
        const bool isPart = isPartOf(wanted, known) || isPartOf(known, wanted);
        const std::size_t ofWhole = editDistance(wanted, known);
        const std::size_t distance = isPart ? std::min(ofPart, ofWhole) : ofWhole;
        if (!known.empty() && (isPart || distance <= farthest)) near.emplace_back(distance, candidate);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> words;
    for (const auto& [distance, candidate] : near)
        if (words.size() < mostWords) words.push_back(candidate);
    return words;
}

namespace {

/** The smallest editDistance between the word and any part of the text. */
std::size_t distanceToPart(std::string_view word, std::string_view text) {
    std::vector<std::size_t> row(text.size() + 1); // a part may begin anywhere
    for (std::size_t i = 0; i < word.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < text.size(); ++k) {
            const std::size_t replaced = diagonal + (word[i] == text[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, row[k + 1] + 1});
        }
    }
    return *std::ranges::min_element(row);
}

/** Like farthestTypo, but stricter, since a word is easily similar to some part of a text; 0 for a short word. */
std::size_t farthestTypoOfPart(std::string_view word) {
    constexpr std::size_t most = 2, lettersOfOne = 4;
    return std::min(most, word.size() / lettersOfOne);
}

} // namespace

std::vector<std::string> nearestParts(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t mostWords = 3;
    const std::string wanted = lowerCase(word);
    std::size_t least = farthestTypoOfPart(wanted);
    if (least == 0) return {};
    std::vector<std::string> near;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = distanceToPart(wanted, lowerCase(candidate));
        if (distance > least) continue;
        if (distance < least) near.clear();
        least = distance;
        if (near.size() < mostWords) near.push_back(candidate);
    }
    return near;
}

std::string didYouMean(const std::vector<std::string>& names) {
    return names.empty() ? "" : "; did you mean " + join(names, " or ") + "?";
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whitespace = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(whitespace), text.size()));
    return text.substr(0, text.find_last_not_of(whitespace) + 1);
}

} // namespace applet_tools
