/** Assertions that stay on in every build. */
#ifndef TEMPLATES_PLATFORM_ASSERTION_H
#define TEMPLATES_PLATFORM_ASSERTION_H

// <assert.h> declares it only without NDEBUG. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[noreturn]] void __assert_fail(const char* expression, const char* file, unsigned int line,
                                           const char* function) noexcept;

namespace vexo::templates::platform {

/** A source location named in an assertion's message. The names and lines are a fixed part of the messages. */
struct SourceLocation {
    const char* file;
    unsigned int line;
    const char* function;
};

/** Ends the program with the usual assertion message unless `holds`. */
inline void assertThat(bool holds, const char* expression, const SourceLocation& location) {
    if (!holds) [[unlikely]]
        __assert_fail(expression, location.file, location.line, location.function);
}

} // namespace vexo::templates::platform

#endif
