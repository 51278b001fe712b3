/** The model of one board, shared by the three libraries. It lives in libvexo_hw.so. */
#ifndef VIRTUAL_BOARD_BOARD_H
#define VIRTUAL_BOARD_BOARD_H

#include "access_log.h"
#include "design_tables.h"
#include "vexo/fg_api.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#define VBOARD_INTERNAL __attribute__((visibility("default")))

namespace vboard {

/** Result codes of the runtime. */
enum : int { accepted = 0, unavailable = -12, badHandle = -2001, badArgument = -2070 };

/** Design parameters have ids from here on; the runtime's own numbers are below. */
inline constexpr int firstParameterId = 10001;

/** The present value of a parameter; which part counts follows from its type. */
struct Value {
    std::uint64_t bits = 0; // integers
    double number = 0;
    std::string text;
    std::vector<std::uint32_t> field;
};

/** What every design of the process is, as told through the control functions. */
struct VBOARD_INTERNAL DesignState {
    std::mutex mutex;
    std::vector<bool> lackingParameter = std::vector<bool>(designParameters.size());
    std::vector<bool> lackingEvent = std::vector<bool>(events.size());
    int extraEvents = 0;
    bool refuseDesign = false;
    bool failInit = false;
    int initError = 0;

    static DesignState& instance();
    bool has(std::size_t parameter);
};

/** How many objects of each sort are alive, so that leaks can be seen. */
struct VBOARD_INTERNAL LiveCounts {
    std::atomic<int> boards{0}, designs{0}, handles{0}, strings{0};
    static LiveCounts& instance();
};

/** Position of a design parameter by its full name, or -1. */
VBOARD_INTERNAL int parameterNamed(const char* name);

} // namespace vboard

/** One board: values, faults and log, under one lock. */
struct VBOARD_INTERNAL LOOMdevice {
public:
    LOOMdevice();
    ~LOOMdevice();
    LOOMdevice(const LOOMdevice&) = delete;
    LOOMdevice& operator=(const LOOMdevice&) = delete;

    int setParameter(int id, const void* value, int type);
    int getParameter(int id, void* value, int type);
    int freeString(void* text);
    int resolve(const char* name);
    int readRegister(int reg, std::uint64_t* value);
    int writeRegister(int reg, std::uint64_t value);
    /** Logs a call of another function. True, with the answer, where one is forced or a fault is due. */
    bool call(const char* function, std::int64_t& answer);
    RegisterInfo* tree();

    void reset();

    std::mutex mutex;
    vboard::AccessLog log;
    vboard::Faults faults;
    std::vector<vboard::Value> values;
    std::vector<std::uint64_t> registerValues;
    std::unordered_map<std::string, std::int64_t> answers;
    int lastError = 0;
    std::int64_t pictures = 0;
    bool acquiring = false;

private:
    int begin(vboard::Access& access);
    int failed(int code);

    std::unique_ptr<class RuntimeTree> m_tree;
};

/** A loaded design. */
struct fpga_design {
    std::vector<TslEvent> events;
    std::vector<std::string> extraNames;
};

#endif
