/**
 * The minimum cost of a routed call: an error-checking mutex locked and unlocked, a count changed under it,
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
    /** The minimum of an enumeration step: no lock, one load. */
    virtual int idAt(int index) = 0;
};

/** Defined in another translation unit, so that its calls stay virtual. */
BaselineWrapper* makeBaselineWrapper(grabcore_setParameterWithType* runtimeSet,
                                     grabcore_getParameterWithType* runtimeGet);

#endif
