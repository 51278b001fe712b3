/** Access to the design's own parameters: their ids, writers and readers. */
#ifndef ENTRY_DESIGNACCESS_H
#define ENTRY_DESIGNACCESS_H

#include "entry/FgLoomWrapper.h"
#include "vexo/fg_errors.h"
#include "vexo/type_tags.hpp"

#include <cstdint>
#include <cstring>

/** The caller's memory for a value, of any alignment. */
template <typename T> class Destination {
public:
    explicit Destination(void* address) : m_address(address) {}
    void* address() const { return m_address; }
    void store(T number) const { std::memcpy(m_address, &number, sizeof number); }

private:
    void* m_address;
};

/**
 * A writer loomSet_X and a reader loomGet_X for each parameter of the design, as its direction allows. They
 * throw the runtime's code if `raise`. loomGetInto_X reads directly into a caller's memory, which stays
 * unchanged if there is no design.
 */
class DesignAccess : public FgLoomWrapper {
public:
    using FgLoomWrapper::FgLoomWrapper;

    /** Looks the ids up in the runtime, once. */
    void resolveDesignParameterIds();

protected:
#define DESIGN_WRITER(parameter)                                                                             \
    void loomSet_##parameter(const void* value, int dma, FgParamTypes type, bool raise) {                    \
        writeDesign(m_id_##parameter, "Device1_" #parameter, value, dma, type, raise);                       \
    }                                                                                                        \
    template <typename T> void loomSet_##parameter(T value) {                                                \
        loomSet_##parameter(&value, 0, tagOf<T>, true);                                                      \
    }
#define DESIGN_READER(parameter)                                                                             \
    void loomGet_##parameter(void* value, int dma, FgParamTypes type, bool raise) {                          \
        readDesign(m_id_##parameter, "Device1_" #parameter, value, dma, type, raise);                        \
    }                                                                                                        \
    template <typename T> T loomGet_##parameter() {                                                          \
        T value{};                                                                                           \
        loomGet_##parameter(&value, 0, tagOf<T>, true);                                                      \
        return value;                                                                                        \
    }                                                                                                        \
    template <typename T> void loomGetInto_##parameter(Destination<T> out) {                                 \
        loomGet_##parameter(out.address(), 0, tagOf<T>, true);                                               \
    }
#define DESIGN_WRITTEN(parameter)                                                                            \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_WRITER(parameter)
#define DESIGN_READ(parameter)                                                                               \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_READER(parameter)
#define DESIGN_BOTH(parameter)                                                                               \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_WRITER(parameter)                                                                                 \
    DESIGN_READER(parameter)
#include "entry/design_parameters.def"
#undef DESIGN_WRITER
#undef DESIGN_READER
#undef DESIGN_WRITTEN
#undef DESIGN_READ
#undef DESIGN_BOTH

private:
    friend struct DesignParameterTable;

    void writeDesign(std::int32_t id, const char* name, const void* value, int dma, FgParamTypes type,
                     bool raise) {
        const int result =
            value != nullptr ? setUnwrappedParameterWithType(id, value, dma, type) : FG_ERR_INVALID_ARGUMENT;
        if (result != FG_OK) accessFailed("Setting", name, id, value, result, raise);
    }
    void readDesign(std::int32_t id, const char* name, void* value, int dma, FgParamTypes type, bool raise) {
        const int result =
            value != nullptr ? getUnwrappedParameterWithType(id, value, dma, type) : FG_ERR_INVALID_ARGUMENT;
        if (result != FG_OK) accessFailed("Getting", name, id, value, result, raise);
    }
    /** Logs a failed access; a null value never reached the runtime. Throws the code if `raise`. */
    void accessFailed(const char* verb, const char* name, std::int32_t id, const void* value, int result,
                      bool raise);
};

#endif
