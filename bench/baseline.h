/**
 * The least that a routed call can cost: an error-checking mutex taken and released, a count that changes under it,
 * one virtual call, one switch over ids, one indirect call for each access of the design, and the last error stored.
 */
#ifndef BENCH_BASELINE_H
#define BENCH_BASELINE_H

#include "vexo/grabber_runtime.h"

#include <atomic>
#include <cstdint>
#include <pthread.h>

class BaselineWrapper {
public:
    static constexpr int parameters = 164;

    virtual ~BaselineWrapper() = default;
    virtual int set(int id, const void* value) = 0;
    virtual int get(int id, void* value) = 0;
    /** What an enumeration asks: no lock, one load. */
    virtual int idAt(int index) = 0;
};

/** Made in another translation unit, so that its calls stay virtual. */
BaselineWrapper* makeBaselineWrapper(grabcore_setParameterWithType* runtimeSet,
                                     grabcore_getParameterWithType* runtimeGet);

#endif
