// A routed access of a number allocates nothing; without memory there is no document, and never half of one.
//
// The program's own malloc family takes the place of the C library's, for this library too: operator new of
// the standard library ends here as well.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>
#include <string>

namespace {
std::atomic<long> allocations{0};
std::atomic<long> lastAllocation{-1}; // all behind it fail; -1: none does

bool counted() {
    const long number = ++allocations;
    const long last = lastAllocation;
    return last < 0 || number <= last;
}
} // namespace

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {
#pragma GCC visibility push(default)
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) { return counted() ? __libc_malloc(size) : nullptr; }
void* calloc(size_t count, size_t size) { return counted() ? __libc_calloc(count, size) : nullptr; }
void* realloc(void* block, size_t size) { return counted() ? __libc_realloc(block, size) : nullptr; }
void* aligned_alloc(size_t alignment, size_t size) {
    return counted() ? __libc_memalign(alignment, size) : nullptr;
}
#pragma GCC visibility pop
}
#endif

namespace {

using namespace support;

class Allocation : public AppletTest {
protected:
    void SetUp() override {
        if (underAddressSanitizer || underThreadSanitizer) GTEST_SKIP() << "the sanitizer owns malloc";
        board.log_kinds(m_grabber.device, 0); // the board's own log would count
        m_grabber.bringUp();
    }
    /** Allocations of a call; the first, uncounted one settles what is made once. */
    template <typename Call> static long countOf(Call call) {
        call();
        const long before = allocations;
        call();
        return allocations - before;
    }
    Grabber m_grabber;
};

TEST_F(Allocation, NoneInARoutedAccessOfANumber) {
    std::uint32_t word = 0;
    double number = 0;
    for (const int id : {FG_WIDTH, FG_HEIGHT, FG_VANTAGEPOINT, FG_LINETRIGGERMODE, FG_EXSYNCON, FG_TIMEOUT}) {
        EXPECT_EQ(countOf([&] { m_grabber.get(id, &word); }), 0) << "get " << id;
        EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(id, word), 0); }), 0) << "set " << id;
    }
    for (const int id : {FG_LINEPERIODE, FG_LINEEXPOSURE, FG_LINETRIGGERDELAY}) {
        EXPECT_EQ(countOf([&] { m_grabber.get(id, &number, 0, FG_PARAM_DOUBLE); }), 0) << "get " << id;
        EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(id, number), 0); }), 0) << "set " << id;
    }
    // Bottom right needs reads as well.
    ASSERT_EQ(m_grabber.set(FG_VANTAGEPOINT, 3u), 0);
    EXPECT_EQ(countOf([&] { EXPECT_EQ(m_grabber.set(FG_HEIGHT, 512u), 0); }), 0);
    EXPECT_EQ(countOf([&] { m_grabber.get(FG_NR_OF_PROCESSES, &word); }), 0);
    // A text that is handed out is one: the library's allocations are seen here.
    EXPECT_GE(countOf([&] {
                  alignas(8) char place[64] = "FG_WIDTH";
                  m_grabber.get(FG_PARAM_DESCR, place, 0, FG_PARAM_ALLOCATED_STRING);
              }),
              1);
}

TEST_F(Allocation, DocumentIsWholeOrThereIsNone) {
    std::string place(200000, '\0');
    const auto call = [&] {
        unsigned long size = place.size();
        return applet.Fg_getParameterInfoXML(m_grabber.fg(), 0, place.data(), &size);
    };
    const auto callWith = [&](long granted) {
        lastAllocation = allocations + granted;
        EXPECT_THROW(call(), std::bad_alloc) << granted; // the exception has room of its own
        lastAllocation = -1;
    };
    const long needed = countOf(call);
    const std::string document = place;
    EXPECT_GT(needed, 100);
    place.assign(place.size(), '\0');
    callWith(needed / 2); // settles what the first exception makes once
    const auto before = mallinfo2().uordblks;
    for (long granted = 0; granted < needed; ++granted)
        callWith(granted);
    // The free blocks that malloc keeps for a thread count as used.
    EXPECT_LT(mallinfo2().uordblks, before + 8 * static_cast<std::size_t>(needed));
    EXPECT_EQ(place, std::string(place.size(), '\0'));
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(place, document);
}

} // namespace
