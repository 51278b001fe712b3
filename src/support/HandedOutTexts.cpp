#include "support/HandedOutTexts.h"

#include <memory>

HandedOutTexts::~HandedOutTexts() {
    for (const char* text : m_texts)
        delete[] text;
}

char* HandedOutTexts::handOut(std::string_view text) {
    auto copy = std::make_unique_for_overwrite<char[]>(text.size() + 1);
    copyText(text, copy.get());
    const std::lock_guard guard(m_lock);
    m_texts.insert(copy.get());
    return copy.release();
}

bool HandedOutTexts::release(const char* text) {
    {
        const std::lock_guard guard(m_lock);
        if (m_texts.erase(text) == 0) return false;
    }
    delete[] text;
    return true;
}
