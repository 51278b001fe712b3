/** The trees of parameter descriptions, one for each port. */
#ifndef CATALOGUE_FG_PARAMETERINFO_H
#define CATALOGUE_FG_PARAMETERINFO_H

#include "vexo/register_info.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>

/**
 * Builds, owns and releases trees of RegisterInfo records.
 *
 * Every addInfo... and addGroupInfo returns null and changes nothing when the port does not exist or is
 * finalized; addInfo... also when the parent is null, where addGroupInfo makes a top-level group. Texts are
 * copied. Records live until `destroy` of their port. There is no lock: the trees are built at bring-up,
 * later only single fields of live records change.
 */
class Fg_ParameterInfo {
public:
    /** Makes `portCount` empty trees. A negative count throws std::bad_array_new_length. */
    explicit Fg_ParameterInfo(int portCount);
    ~Fg_ParameterInfo();
    Fg_ParameterInfo(const Fg_ParameterInfo&) = delete;
    Fg_ParameterInfo& operator=(const Fg_ParameterInfo&) = delete;

    /** Empties and opens a port. */
    void init(int port);
    /** Releases all records of a port. The root pointer stays; `init` clears it. */
    void destroy(int port);
    /** Closes a port against further records; the present ones stay readable and writable. */
    void finalize(int port);

    /** A new record of the port, not linked yet. Null for an unknown port. */
    RegisterInfo* create(int port, int kind, const char* displayName, const char* name, int id, int access,
                         int paramClass, int published, const char* unit);
    /** Links `child` below a group; does nothing if `parent` is not a group. */
    void add(RegisterInfo* child, RegisterInfo* parent);
    /** Links a record at the end of the port's top-level chain. */
    void add(RegisterInfo* record, int port);

    RegisterInfo* addGroupInfo(int port, RegisterInfo* parent, const char* displayName);
    RegisterInfo* addGroupInfo(int port, RegisterInfo* parent, const char* displayName, const char* name,
                               int published);

    /** A negative entry count counts as 0. */
    RegisterInfo* addInfoEnum(RegisterInfo* parent, const char* displayName, const char* name, int entryCount,
                              int access, int paramClass, int published, const char* unit, int id, int port);
    /** Replaces entry `index`. 0, or -500 if there is no such entry or no copy of the label. */
    int addEnumNameValue(RegisterInfo* info, int index, const char* label, int value,
                         const char* symbolicName);

    RegisterInfo* addInfoInt(RegisterInfo* parent, const char* displayName, const char* name,
                             std::int32_t minimum, std::int32_t maximum, std::int32_t increment, int access,
                             int paramClass, int published, const char* unit, int id, int port);
    RegisterInfo* addInfoUInt(RegisterInfo* parent, const char* displayName, const char* name,
                              std::uint32_t minimum, std::uint32_t maximum, std::uint32_t increment,
                              int access, int paramClass, int published, const char* unit, int id, int port);
    RegisterInfo* addInfoInt64(RegisterInfo* parent, const char* displayName, const char* name,
                               std::int64_t minimum, std::int64_t maximum, std::int64_t increment, int access,
                               int paramClass, int published, const char* unit, int id, int port);
    RegisterInfo* addInfoUInt64(RegisterInfo* parent, const char* displayName, const char* name,
                                std::uint64_t minimum, std::uint64_t maximum, std::uint64_t increment,
                                int access, int paramClass, int published, const char* unit, int id,
                                int port);
    RegisterInfo* addInfoDouble(RegisterInfo* parent, const char* displayName, const char* name,
                                double minimum, double maximum, double increment, int access, int paramClass,
                                int published, const char* unit, int id, int port);
    RegisterInfo* addInfoString(RegisterInfo* parent, const char* displayName, const char* name,
                                const char* value, int access, int paramClass, int published,
                                const char* unit, int id, int port);

    /* The array kinds take an increment like the scalars and ignore it: the record has no field for it. */
    RegisterInfo* addInfoIntField(RegisterInfo* parent, const char* displayName, const char* name,
                                  int elementCount, std::int32_t minimum, std::int32_t maximum,
                                  std::int32_t increment, int access, int paramClass, int published,
                                  const char* unit, int id, int port);
    RegisterInfo* addInfoUIntField(RegisterInfo* parent, const char* displayName, const char* name,
                                   int elementCount, std::uint32_t minimum, std::uint32_t maximum,
                                   std::uint32_t increment, int access, int paramClass, int published,
                                   const char* unit, int id, int port);
    RegisterInfo* addInfoInt64Field(RegisterInfo* parent, const char* displayName, const char* name,
                                    int elementCount, std::int64_t minimum, std::int64_t maximum,
                                    std::int64_t increment, int access, int paramClass, int published,
                                    const char* unit, int id, int port);
    RegisterInfo* addInfoUInt64Field(RegisterInfo* parent, const char* displayName, const char* name,
                                     int elementCount, std::uint64_t minimum, std::uint64_t maximum,
                                     std::uint64_t increment, int access, int paramClass, int published,
                                     const char* unit, int id, int port);
    RegisterInfo* addInfoDoubleField(RegisterInfo* parent, const char* displayName, const char* name,
                                     int elementCount, double minimum, double maximum, double increment,
                                     int access, int paramClass, int published, const char* unit, int id,
                                     int port);

    /** Root of a port's tree; null while it is empty or if there is no such port. */
    RegisterInfo* getRegisterInfo(int port) const;
    /** The record after `info` in the top-level chain; the root for a null `info`. */
    RegisterInfo* getNextRegisterInfo(RegisterInfo* info, int port) const;

    /* A null or empty text clears. */
    void setDescription(RegisterInfo* info, const char* text);
    void setToolTip(RegisterInfo* info, const char* text);
    void setGenICamName(RegisterInfo* info, const char* text);
    void setGenICamVisibility(RegisterInfo* info, int value);
    void setGenICamStreamable(RegisterInfo* info, bool value);
    void setGenICamType(RegisterInfo* info, int value);
    void setEnumEntryDescription(RegisterInfo* info, int index, const char* text);
    void setEnumEntryToolTip(RegisterInfo* info, int index, const char* text);
    void setEnumEntryGenICamName(RegisterInfo* info, int index, const char* text);

    /** Makes room for that many names; a capacity below the present one is ignored. */
    void setInvalidatingNameCapacity(RegisterInfo* info, std::uint32_t capacity);
    /** Adds a name; a null or empty one is ignored. Room is reserved with setInvalidatingNameCapacity. */
    void addInvalidatingName(RegisterInfo* info, const char* name);

private:
    struct Leaf;
    struct Port {
        RegisterInfo* root = nullptr;
        bool finalized = false;
        // Holds the records with their texts and arrays. A piece that is replaced stays until all are released.
        std::pmr::monotonic_buffer_resource memory{std::size_t{32} * 1024};
    };

    std::pmr::memory_resource& memoryOf(const RegisterInfo& record) const;
    Port* find(int port) const;
    Port* findOpen(int port) const;
    RegisterInfo* addLeaf(int kind, const Leaf& leaf);
    template <typename Area, typename T>
    RegisterInfo* addScalar(int kind, Area RegisterInfoValue::*area, const Leaf& leaf, T minimum, T maximum,
                            T increment);
    template <typename Area, typename T>
    RegisterInfo* addField(int kind, Area RegisterInfoValue::*area, const Leaf& leaf, int elementCount,
                           T minimum, T maximum);

    int m_portCount;
    std::unique_ptr<Port[]> m_ports;
};

#endif
