/** Texts returned to callers as new strings. */
#ifndef SUPPORT_HANDEDOUTTEXTS_H
#define SUPPORT_HANDEDOUTTEXTS_H

#include <mutex>
#include <string_view>
#include <unordered_set>

/** Owns each text until the caller releases it or this object is destroyed. Thread-safe. */
class HandedOutTexts {
public:
    HandedOutTexts() = default;
    ~HandedOutTexts();
    HandedOutTexts(const HandedOutTexts&) = delete;
    HandedOutTexts& operator=(const HandedOutTexts&) = delete;

    /** A null-terminated copy. */
    char* handOut(std::string_view text);
    /** Frees a text. False for any other address, which is not read. */
    bool release(const char* text);

private:
    std::mutex m_lock;
    std::unordered_set<const char*> m_texts;
};

/** Copies a null-terminated string; the API has no buffer size. */
inline void copyText(std::string_view text, char* destination) {
    text.copy(destination, text.size());
    destination[text.size()] = '\0';
}

#endif
