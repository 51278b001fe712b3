/** Runs many threads at once. */
#ifndef TESTS_SUPPORT_STRESS_H
#define TESTS_SUPPORT_STRESS_H

#include <latch>
#include <thread>
#include <vector>

namespace support {

/** Calls `body` for each turn in each thread; all begin at once. Returns when all have ended. */
template <typename Body> void stress(int threads, int turns, Body body) {
    std::latch start(threads);
    std::vector<std::jthread> running;
    for (int thread = 0; thread < threads; ++thread)
        running.emplace_back([&, thread] {
            start.arrive_and_wait();
            for (int turn = 0; turn < turns; ++turn)
                body(thread, turn);
        });
}

} // namespace support

#endif
