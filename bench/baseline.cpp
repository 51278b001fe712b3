#include "baseline.h"

#include <array>
#include <cstring>

namespace {

class CountingLock {
public:
    CountingLock() {
        pthread_mutexattr_t attribute;
        pthread_mutexattr_init(&attribute);
        pthread_mutexattr_settype(&attribute, PTHREAD_MUTEX_ERRORCHECK);
        pthread_mutex_init(&m_mutex, &attribute);
        pthread_mutexattr_destroy(&attribute);
    }
    ~CountingLock() { pthread_mutex_destroy(&m_mutex); }
    CountingLock(const CountingLock&) = delete;
    CountingLock& operator=(const CountingLock&) = delete;
    void lock() {
        pthread_mutex_lock(&m_mutex);
        count(1);
    }
    void unlock() {
        count(-1);
        pthread_mutex_unlock(&m_mutex);
    }

private:
    void count(int step) {
        m_count.store(m_count.load(std::memory_order_relaxed) + step, std::memory_order_relaxed);
    }

    pthread_mutex_t m_mutex;
    std::atomic<int> m_count{0};
};

class Guard {
public:
    explicit Guard(CountingLock& lock) : m_lock(lock) { m_lock.lock(); }
    ~Guard() { m_lock.unlock(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    CountingLock& m_lock;
};

class Baseline final : public BaselineWrapper {
public:
    Baseline(grabcore_setParameterWithType* runtimeSet, grabcore_getParameterWithType* runtimeGet)
        : m_runtimeSet(runtimeSet)
        , m_runtimeGet(runtimeGet) {}

    int set(int id, const void* value) override {
        const Guard guard(m_lock);
        return finish(change(id, value));
    }

    int get(int id, void* value) override {
        const Guard guard(m_lock);
        return finish(answer(id, value));
    }

    int idAt(int index) override {
        return finish(index >= 0 && index < parameters ? m_ids[static_cast<std::size_t>(index)] : -1);
    }

private:
    /** Stores the last error, which is 0 after a success. */
    int finish(int result) {
        m_lastError.store(result < 0 ? result : 0, std::memory_order_relaxed);
        return result;
    }

    int change(int id, const void* value) {
        try {
            switch (id) {
            case FG_WIDTH:
                store(m_width, value, 7);
                return 0;
            case FG_HEIGHT:
                store(m_height, value, 11);
                return 0;
            case FG_EXSYNCON:
                store(m_exsyncOn, value, 1);
                return 0;
            case FG_TRIGGEROUT_GPO_0_SOURCE:
                store(m_source, value, 2);
                requireKnownSource();
                return 0;
            case FG_CAMERASIMULATOR_LINERATE:
                store(m_source, value, 4);
                return read(3);
            case FG_LINE_DOWNSCALE:
                refuseBelow(value, 1);
                return 0;
            default:
                return -1;
            }
        } catch (int code) {
            return code;
        }
    }

    int answer(int id, void* value) {
        switch (id) {
        case FG_WIDTH:
            std::memcpy(value, &m_width, sizeof m_width);
            return 0;
        case FG_HEIGHT:
            std::memcpy(value, &m_height, sizeof m_height);
            return 0;
        case FG_EXSYNCON:
            std::memcpy(value, &m_exsyncOn, sizeof m_exsyncOn);
            return 0;
        case FG_CAMSTATUS_EXTENDED:
            return read(6);
        case FG_LINEPERIODE:
            std::memcpy(value, &m_period, sizeof m_period);
            return 0;
        default:
            return -1;
        }
    }

    void store(std::uint32_t& member, const void* value, int writes) {
        std::memcpy(&member, value, sizeof member);
        for (int i = 0; i < writes; ++i)
            m_runtimeSet(nullptr, i, &member, 0, FG_PARAM_UINT32);
    }

    int read(int words) {
        std::uint32_t word = 0;
        for (int i = 0; i < words; ++i)
            m_runtimeGet(nullptr, i, &word, 0, FG_PARAM_UINT32);
        return 0;
    }

    void requireKnownSource() {
        static constexpr std::uint32_t sources[] = {4,    5,    2000, 2001, 2002, 2007, 2008,
                                                    1001, 1011, 1021, 1031, 1041, 1051, 1061,
                                                    1071, 1081, 1091, 1101, 1111};
        for (const std::uint32_t source : sources)
            if (source == m_source) return;
        throw static_cast<int>(FG_ERR_OUT_OF_RANGE);
    }

    __attribute__((noinline)) static void refuseBelow(const void* value, std::uint32_t minimum) {
        std::uint32_t number = 0;
        std::memcpy(&number, value, sizeof number);
        if (number < minimum) throw static_cast<int>(FG_ERR_OUT_OF_RANGE);
    }

    CountingLock m_lock;
    grabcore_setParameterWithType* m_runtimeSet;
    grabcore_getParameterWithType* m_runtimeGet;
    std::uint32_t m_width = 1024;
    std::uint32_t m_height = 1024;
    std::uint32_t m_exsyncOn = 1;
    std::uint32_t m_source = FG_SIGNAL_CAM0_EXSYNC;
    double m_period = 200.0;
    std::array<int, parameters> m_ids{};
    std::atomic<int> m_lastError{0};
};

} // namespace

BaselineWrapper* makeBaselineWrapper(grabcore_setParameterWithType* runtimeSet,
                                     grabcore_getParameterWithType* runtimeGet) {
    return new Baseline(runtimeSet, runtimeGet);
}
