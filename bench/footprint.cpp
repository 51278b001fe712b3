// Memory cost of objects: resident size of a further object, and memory left over after 200 opens and frees.
// The allocator may keep pages, so the second is measured in bytes in use, after as many opens to warm up.

#include "stub_applet.h"

#include <cstdio>
#include <deque>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace {

long residentKib() {
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    long size = 0;
    long resident = 0;
    statm >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

void openAndFree(int times) {
    for (int i = 0; i < times; ++i)
        const StubHandle handle;
}

long furtherObjectKib() {
    constexpr int objects = 20;
    const long before = residentKib();
    std::deque<StubHandle> handles;
    for (int i = 0; i < objects; ++i)
        handles.emplace_back();
    return (residentKib() - before) / objects;
}

} // namespace

int main() {
    openAndFree(1);
    std::printf("a further object: %ld KiB resident\n", furtherObjectKib());

    openAndFree(200);
    const std::size_t before = mallinfo2().uordblks;
    openAndFree(200);
    const std::size_t after = mallinfo2().uordblks;
    std::printf("left after 200 opens and frees: %ld bytes in use\n",
                static_cast<long>(after) - static_cast<long>(before));
}
