// What objects cost in memory: resident size of a further object, and what 200 opens and frees leave behind.

#include "inert_applet.h"

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

} // namespace

int main() {
    { const InertHandle warmUp; }
    const long before = residentKib();
    long further = 0;
    {
        constexpr int objects = 20;
        std::deque<InertHandle> handles;
        for (int i = 0; i < objects; ++i)
            handles.emplace_back();
        further = (residentKib() - before) / objects;
    }
    const long start = residentKib();
    for (int i = 0; i < 200; ++i)
        const InertHandle handle;
    std::printf("a further object: %ld KiB resident\n", further);
    std::printf("left after 200 opens and frees: %ld KiB\n", residentKib() - start);
}
