// Many threads on one handle, on handles of their own and on each other's texts; threads that are cancelled
// during an access.

#include "support/applet_fixture.h"
#include "support/faults.h"
#include "support/sanitizers.h"
#include "support/stress.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>
#include <mutex>
#include <pthread.h>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace support;

constexpr int threadCount = 8;
// Smaller counts under the sanitizers.
constexpr int callsOfEach = underThreadSanitizer ? 1000 : underAddressSanitizer ? 5000 : 20000;
constexpr int opensOfEach = underThreadSanitizer ? 20 : underAddressSanitizer ? 50 : 200;
constexpr int textsOfEach = underThreadSanitizer || underAddressSanitizer ? 500 : 5000;

/** A number parameter with values to set, as bits in its own width. */
struct Row {
    int id;
    std::string name;
    std::vector<std::uint64_t> values;

    std::uint64_t read(Grabber& grabber) const {
        std::uint64_t bits = 0;
        EXPECT_EQ(grabber.get(id, &bits), FG_OK) << name;
        return bits;
    }
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = [] {
        Grabber grabber(1);
        std::vector<Row> made;
        for (const Lines& words : dataRows("settable_values.txt")) {
            if (words[1].starts_with('\'')) continue; // a text
            Row& row = made.emplace_back(
                Row{host().applet().Fg_getParameterIdByName(grabber.fg(), words[0].c_str()), words[0], {}});
            for (const std::string& word : Lines(words.begin() + 1, words.end()))
                row.values.push_back(words[1].find('.') != word.npos
                                         ? std::bit_cast<std::uint64_t>(std::stod(word))
                                         : static_cast<std::uint32_t>(std::stol(word)));
        }
        return made;
    }();
    return all;
}

std::size_t at(const std::string& name) {
    return static_cast<std::size_t>(std::ranges::find(rows(), name, &Row::name) - rows().begin());
}

/** A field of the tree that other threads may change. */
template <typename T> T live(const T& field) {
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

std::string documentOf(Grabber& grabber) {
    std::string buffer(200000, '\0');
    unsigned long size = buffer.size();
    EXPECT_EQ(host().applet().Fg_getParameterInfoXML(grabber.fg(), 0, buffer.data(), &size), FG_OK);
    return buffer.substr(0, size - 1);
}

/** A document without the parts that sets change. */
std::string frameOf(const std::string& document) {
    std::string frame;
    for (const std::string& line : linesOf(document))
        if (!line.starts_with("<Min>") && !line.starts_with("<Max>") && !line.starts_with("<AccessMode>"))
            frame += line + '\n';
    return frame;
}

/** Values, tree and design while no thread runs, one line each. */
std::string stateOf(Grabber& grabber) {
    std::ostringstream state;
    for (const Row& row : rows())
        state << row.name << " = " << row.read(grabber) << '\n';
    forEachRecord(host().applet().Fg_getParameterInfo(grabber.fg(), 0), [&](const RegisterInfo& record) {
        state << record.name;
        // The access of this one depends on the order of sets of the line trigger's mode.
        if (record.id != FG_SHAFTENCODER_COMPENSATION_COUNT) state << ": access " << record.access;
        if (record.kind == REGISTER_KIND_UINT) state << " maximum " << record.value.u32.maximum;
        if (record.kind == REGISTER_KIND_DOUBLE) state << " maximum " << record.value.f64.maximum;
        state << '\n';
    });
    for (const Lines& words : dataRows("design_parameters.txt")) {
        std::int64_t value = 0;
        if (host().board().peek_int(grabber.device, words[0].c_str(), &value) == VBOARD_OK)
            state << words[0] << " is " << value << '\n';
    }
    return state.str();
}

/** The calls in the order in which they reach the board, numbered per thread. */
class Order {
public:
    explicit Order(Grabber& grabber) {
        host().board().on_access(
            grabber.device, [](void* order) { static_cast<Order*>(order)->note(); }, this);
    }
    static void begin(int thread, int call) { s_call = thread * callsOfEach + call; }
    /** How often a call was interrupted by accesses of another one. */
    std::size_t interruptions() {
        std::ranges::sort(m_calls);
        return m_calls.size() - std::set<int>(m_calls.begin(), m_calls.end()).size();
    }
    std::size_t calls() const { return m_calls.size(); }

private:
    void note() {
        const std::lock_guard guard(m_mutex);
        if (m_calls.empty() || m_calls.back() != s_call) m_calls.push_back(s_call);
    }
    static thread_local int s_call;
    std::mutex m_mutex;
    std::vector<int> m_calls;
};
thread_local int Order::s_call = -1;

class Threads : public AppletTest {};

TEST_F(Threads, SetAndGetOnOneHandleWhileTreeAndDocumentAreRead) {
    Grabber grabber(0);
    std::vector<std::set<std::uint64_t>> possible;
    for (const Row& row : rows()) {
        possible.push_back({row.read(grabber)});
        possible.back().insert(row.values.begin(), row.values.end());
    }
    std::set<double> periods;
    for (const std::uint64_t period : possible[at("FG_LINEPERIODE")])
        periods.insert(std::bit_cast<double>(period));
    // Not set here: a refused speed mode changes the object.
    const std::size_t speedMode = at("FG_CAMERASIMULATOR_SELECT_MODE");
    const std::string frame = frameOf(documentOf(grabber));
    const std::set<int> expected = {FG_OK, FG_ERR_OUT_OF_RANGE, FG_ERR_GRANULARITY, FG_ERR_FILE_TYPE,
                                    FG_ERR_INVALID_ARGUMENT};
    std::atomic<int> wrong{0}, taken{0};
    Order order(grabber);

    std::atomic<bool> stop{false};
    std::thread walker([&] {
        do {
            forEachRecord(applet.Fg_getParameterInfo(grabber.fg(), 0), [&](const RegisterInfo& record) {
                if (live(record.access) > 7) ++wrong;
                // The possible values of this one are known: the period that some thread has set.
                if (record.id == FG_LINETRIGGERDELAY && !periods.contains(live(record.value.f64.maximum)))
                    ++wrong;
            });
        } while (!stop);
    });
    std::thread reader([&] {
        do {
            if (frameOf(documentOf(grabber)) != frame) ++wrong;
            if (!expected.contains(grabber.lastError())) ++wrong;
        } while (!stop);
    });
    stress(threadCount, 1, [&](int thread, int) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int call = 0; call < callsOfEach; ++call) {
            Order::begin(thread, call);
            const std::size_t chosen = random() % rows().size();
            const Row& row = rows()[chosen];
            if (chosen == speedMode || random() % 2 == 0) {
                if (!possible[chosen].contains(row.read(grabber))) ++wrong;
                continue;
            }
            const int code = grabber.set(row.id, row.values[random() % row.values.size()]);
            if (!expected.contains(code)) ++wrong;
            if (code == FG_OK) ++taken;
        }
    });
    stop = true;
    walker.join();
    reader.join();
    board.on_access(grabber.device, nullptr, nullptr);
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(taken, threadCount * callsOfEach / 4);
    EXPECT_GT(order.calls(), 1000u);
    EXPECT_EQ(order.interruptions(), 0u);

    // Afterwards all values are consistent: setting one again changes nothing.
    const std::string state = stateOf(grabber);
    for (const Row& row : rows())
        grabber.set(row.id, row.read(grabber));
    EXPECT_EQ(stateOf(grabber), state);
}

TEST_F(Threads, EachOpensAndFreesItsOwnHandles) {
    std::atomic<int> wrong{0};
    stress(threadCount, opensOfEach, [&](int thread, int turn) {
        Grabber grabber(turn % 2);
        const auto timeout = static_cast<std::uint32_t>(1000 * thread + turn + 2);
        if (grabber.error != FG_OK || grabber.set(FG_TIMEOUT, timeout) != FG_OK ||
            grabber.set(FG_CAMSTATUS, 0u) != FG_ERR_NOT_AVAILABLE || // logs
            grabber.value<std::uint32_t>(FG_TIMEOUT) != timeout || grabber.free() != FG_OK)
            ++wrong;
    });
    EXPECT_EQ(wrong, 0);
    for (const char* what : {"boards", "designs", "handles"})
        EXPECT_EQ(support::live(what), 0) << what;
    EXPECT_FALSE(isLoaded("libcommon-logging-dispatcher.so")); // the library is no longer in use
}

TEST_F(Threads, TextsAreFreedByOtherThreads) {
    Grabber grabber(0);
    const std::set<std::string> files = {"", "short", std::string(3000, 'x')};
    std::array<std::atomic<char*>, threadCount / 2> handedOver{}; // one slot for each pair of threads
    std::atomic<int> wrong{0};
    stress(threadCount, textsOfEach, [&](int thread, int turn) {
        std::atomic<char*>& slot = handedOver[static_cast<std::size_t>(thread) / 2];
        const int id = thread % 4 < 2 ? FG_DEBUGFILE : FG_LUT_CUSTOM_FILE;
        char* text = nullptr;
        if (thread % 2 == 0) { // reads texts while others change them
            if (grabber.get(id, &text, 0, FG_PARAM_ALLOCATED_STRING) != FG_OK) ++wrong;
            while (slot != nullptr)
                std::this_thread::yield();
            slot = text;
            const auto file = std::next(files.begin(), turn % 3);
            applet.Fg_setParameterWithType(grabber.fg(), id, file->c_str(), 0, FG_PARAM_TEXT);
            return;
        }
        while ((text = slot.exchange(nullptr)) == nullptr)
            std::this_thread::yield();
        if (!files.contains(text)) ++wrong;
        if (applet.Fg_freeParameterStringWithType(grabber.fg(), id, text, 0, FG_PARAM_ALLOCATED_STRING) !=
            FG_OK)
            ++wrong;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(support::live("strings"), 0);
}

/** Ends its thread, as a cancellation does, at an access of a board. */
class Cancellation {
public:
    Cancellation(Grabber& grabber, int access) : m_grabber(grabber), m_left(access) {
        host().board().on_access(
            grabber.device, [](void* self) { static_cast<Cancellation*>(self)->count(); }, this);
    }
    ~Cancellation() { host().board().on_access(m_grabber.device, nullptr, nullptr); }
    Cancellation(const Cancellation&) = delete;
    Cancellation& operator=(const Cancellation&) = delete;

    /** Performs `call` in a thread. True if it was cancelled. */
    bool hits(std::function<void()> call) {
        pthread_t thread;
        const auto body = [](void* function) -> void* {
            (*static_cast<std::function<void()>*>(function))();
            return nullptr;
        };
        EXPECT_EQ(pthread_create(&thread, nullptr, body, &call), 0);
        void* result = nullptr;
        EXPECT_EQ(pthread_join(thread, &result), 0);
        return result == PTHREAD_CANCELED;
    }

private:
    void count() {
        if (--m_left != 0) return;
        pthread_cancel(pthread_self());
        expectStackToUnwind();
        pthread_testcancel();
    }
    Grabber& m_grabber;
    int m_left;
};

class CancelledThread : public Threads {
protected:
    /**
     * Cancels `call` at each of its accesses in turn, always from the state that `prepare` makes; after each,
     * the same call must end as it does undisturbed. Returns the number of accesses.
     */
    template <typename Prepare, typename Call> int sweep(Grabber& grabber, Prepare prepare, Call call) {
        prepare();
        EXPECT_EQ(call(), FG_OK);
        const std::string undisturbed = stateOf(grabber);
        for (int access = 1;; ++access) {
            SCOPED_TRACE(testing::Message() << "access " << access);
            prepare();
            Cancellation cancellation(grabber, access);
            if (!cancellation.hits(call)) return access - 1;
            m_otherThread.run([&] { EXPECT_NE(grabber.value<std::uint32_t>(FG_TIMEOUT), 0u); });
            EXPECT_EQ(call(), FG_OK);
            EXPECT_EQ(stateOf(grabber), undisturbed);
        }
    }

private:
    OtherThread m_otherThread;
};

TEST_F(CancelledThread, LeavesTheHandleUsable) {
    Grabber grabber(0);
    int cancelled = 0;
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        const std::uint64_t before = row.read(grabber);
        const auto restore = [&] { EXPECT_EQ(grabber.set(row.id, before), FG_OK); };
        const auto value = std::ranges::find_if(
            row.values, [&](std::uint64_t one) { return grabber.set(row.id, one) == FG_OK; });
        ASSERT_NE(value, row.values.end());
        cancelled += sweep(grabber, restore, [&] { return grabber.set(row.id, *value); });
        restore();
    }
    EXPECT_GT(cancelled, static_cast<int>(rows().size()));
}

TEST_F(CancelledThread, LeaksNoTextAndNoFile) {
    const TemporaryFolder folder;
    const std::string file = folder / "state.mcf";
    Grabber grabber(0);
    std::uint32_t run[] = {1, 2, 3};
    const std::function<int()> calls[] = {
        [&] {
            char* text = nullptr;
            const int code = grabber.get(FG_APPLET_ID, &text, 0, FG_PARAM_ALLOCATED_STRING);
            applet.Fg_freeParameterStringWithType(grabber.fg(), FG_APPLET_ID, text, 0,
                                                  FG_PARAM_ALLOCATED_STRING);
            return code;
        },
        [&] {
            return grabber.set(FG_LUT_VALUE_RED, FieldParameterAccess{FG_PARAM_UINT32, 5, 3, run}, 0,
                               FG_PARAM_FIELD_ACCESS);
        },
        [&] { return applet.Fg_saveConfig(grabber.fg(), file.c_str()); },
        [&] { return applet.Fg_loadConfig(grabber.fg(), file.c_str()); },
    };
    const auto before = held();
    for (const auto& call : calls)
        EXPECT_GT(sweep(
                      grabber, [] {}, call),
                  0);
    EXPECT_EQ(held(), before);
}

TEST_F(CancelledThread, LeaksNothingDuringBringUp) {
    int access = 0;
    for (bool cancelled = true; cancelled;) {
        SCOPED_TRACE(testing::Message() << "access " << ++access);
        Grabber grabber;
        board.log_kinds(grabber.device, VBOARD_SET | VBOARD_GET | VBOARD_RESOLVE);
        {
            Cancellation cancellation(grabber, access);
            cancelled = cancellation.hits([&] { grabber.bringUp(); });
        }
        if (!cancelled) break;
        EXPECT_EQ(support::live("designs") + support::live("handles"), 0);
        EXPECT_EQ(grabber.bringUp().error, FG_OK);
    }
    EXPECT_GT(access, 138); // names are resolved, and values written
}

} // namespace
