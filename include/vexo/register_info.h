/**
 * The record of one parameter or group in a tree of parameter descriptions.
 *
 * The record is an interchange format: the grabber runtime reads it directly, so its layout is fixed to the
 * byte (64-bit little-endian process, natural alignment). Records, strings and arrays belong to the tree that
 * created them and are valid as long as its object; a reader must not change or release anything. `access`
 * and the maximum of a live record change while parameters are set, each with one atomic store.
 */
#ifndef VEXO_REGISTER_INFO_H
#define VEXO_REGISTER_INFO_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Values of RegisterInfo::kind. */
enum RegisterInfoKind {
    REGISTER_KIND_GROUP = 0,
    REGISTER_KIND_UINT = 1,
    REGISTER_KIND_ENUM = 3,
    REGISTER_KIND_STRING = 5,
    REGISTER_KIND_DOUBLE = 6,
    REGISTER_KIND_UINT_FIELD = 7,
    REGISTER_KIND_DOUBLE_FIELD = 8,
    REGISTER_KIND_UINT64 = 9,
    REGISTER_KIND_UINT64_FIELD = 10,
    REGISTER_KIND_INT = 11,
    REGISTER_KIND_INT64 = 12,
    REGISTER_KIND_INT_FIELD = 13,
    REGISTER_KIND_INT64_FIELD = 14
};

/** Bits of RegisterInfo::access. */
enum RegisterInfoAccess {
    REGISTER_ACCESS_READ = 1,
    REGISTER_ACCESS_WRITE = 2,
    REGISTER_ACCESS_WRITE_WHILE_ACQUIRING = 4
};

enum { REGISTER_INFO_SIZE = 216, REGISTER_INFO_VERSION = 3 };

struct RegisterInfo_v3;

/** The value area, by kind. Array kinds keep the element count where a scalar keeps its increment. */
typedef union RegisterInfoValue {
    struct {
        int32_t childCount;
        struct RegisterInfo_v3** children;
        int32_t nextChildIndex;
    } group;
    struct {
        uint32_t minimum, maximum, increment, value;
    } u32;
    struct {
        int32_t minimum, maximum, increment, value;
    } i32;
    struct {
        uint64_t minimum, maximum, increment, value;
    } u64;
    struct {
        int64_t minimum, maximum, increment, value;
    } i64;
    struct {
        double minimum, maximum, increment, value;
    } f64;
    struct {
        uint32_t minimum, maximum;
        int32_t elementCount, zero;
        uint32_t first;
    } u32Field;
    struct {
        int32_t minimum, maximum;
        int32_t elementCount, zero;
        int32_t first;
    } i32Field;
    struct {
        uint64_t minimum, maximum;
        int32_t elementCount, zero;
        uint64_t first;
    } u64Field;
    struct {
        int64_t minimum, maximum;
        int32_t elementCount, zero;
        int64_t first;
    } i64Field;
    struct {
        double minimum, maximum;
        int32_t elementCount, zero;
        double first;
    } f64Field;
    struct {
        int32_t entryCount;
        char** labels;
        int32_t* values;
        int32_t value;
        char** symbolicNames;
    } enumeration;
    struct {
        uint64_t unused;
        char* text;
    } string;
} RegisterInfoValue;

typedef struct RegisterInfo_v3 {
    int32_t kind;                     /**< RegisterInfoKind */
    int32_t index;                    /**< position among the parent's children, from 0 */
    char* displayName;                /**< label, never null */
    char* name;                       /**< parameter name, null in most groups */
    uint32_t access;                  /**< RegisterInfoAccess bits, 0 in groups */
    int32_t paramClass;               /**< class word for the runtime */
    int32_t published;                /**< non-zero: part of the XML description */
    int32_t id;                       /**< parameter id, 0 in groups */
    RegisterInfoValue value;          /**< by kind */
    struct RegisterInfo_v3* next;     /**< next record of the top-level chain, null in children */
    struct RegisterInfo_v3* previous; /**< previous record of that chain */
    int32_t depth;                    /**< 0 at top level */
    char* parentName;                 /**< label of the parent, null at top level */
    char* unit;                       /**< unit text, may be empty or null */
    int32_t port;
    int32_t reserved124;
    int32_t structSize; /**< REGISTER_INFO_SIZE */
    int32_t version;    /**< REGISTER_INFO_VERSION */
    char* description;
    char* toolTip;
    char* genICamName;
    int32_t genICamVisibility;
    bool genICamStreamable;
    uint8_t reserved165[3];
    char** invalidatingNames;
    uint32_t invalidatingNameCount;
    uint32_t invalidatingNameCapacity;
    int32_t genICamType;
    int32_t reserved188;
    char** enumEntryDescriptions; /**< enumerations: one text or null for each entry */
    char** enumEntryToolTips;
    char** enumEntryGenICamNames;
} RegisterInfo_v3;

typedef RegisterInfo_v3 RegisterInfo;

#ifdef __cplusplus
#define VEXO_STATIC_ASSERT static_assert
#else
#define VEXO_STATIC_ASSERT _Static_assert
#endif
#define VEXO_FIELD(field, offset, size)                                                                      \
    VEXO_STATIC_ASSERT(offsetof(RegisterInfo_v3, field) == (offset), #field " has moved");                   \
    VEXO_STATIC_ASSERT(sizeof(((RegisterInfo_v3*)0)->field) == (size), #field " has another size")

VEXO_STATIC_ASSERT(sizeof(RegisterInfo_v3) == REGISTER_INFO_SIZE, "RegisterInfo has another size");
VEXO_FIELD(kind, 0, 4);
VEXO_FIELD(index, 4, 4);
VEXO_FIELD(displayName, 8, 8);
VEXO_FIELD(name, 16, 8);
VEXO_FIELD(access, 24, 4);
VEXO_FIELD(paramClass, 28, 4);
VEXO_FIELD(published, 32, 4);
VEXO_FIELD(id, 36, 4);
VEXO_FIELD(value, 40, 40);
VEXO_FIELD(value.group.childCount, 40, 4);
VEXO_FIELD(value.group.children, 48, 8);
VEXO_FIELD(value.group.nextChildIndex, 56, 4);
VEXO_FIELD(value.u32.minimum, 40, 4);
VEXO_FIELD(value.u32.maximum, 44, 4);
VEXO_FIELD(value.u32.increment, 48, 4);
VEXO_FIELD(value.u32.value, 52, 4);
VEXO_FIELD(value.u64.minimum, 40, 8);
VEXO_FIELD(value.u64.maximum, 48, 8);
VEXO_FIELD(value.u64.increment, 56, 8);
VEXO_FIELD(value.u64.value, 64, 8);
VEXO_FIELD(value.i32.minimum, 40, 4);
VEXO_FIELD(value.i32.maximum, 44, 4);
VEXO_FIELD(value.i32.increment, 48, 4);
VEXO_FIELD(value.i32.value, 52, 4);
VEXO_FIELD(value.i64.minimum, 40, 8);
VEXO_FIELD(value.i64.maximum, 48, 8);
VEXO_FIELD(value.i64.increment, 56, 8);
VEXO_FIELD(value.i64.value, 64, 8);
VEXO_FIELD(value.f64.minimum, 40, 8);
VEXO_FIELD(value.f64.maximum, 48, 8);
VEXO_FIELD(value.f64.increment, 56, 8);
VEXO_FIELD(value.f64.value, 64, 8);
VEXO_FIELD(value.u32Field.minimum, 40, 4);
VEXO_FIELD(value.u32Field.maximum, 44, 4);
VEXO_FIELD(value.u32Field.elementCount, 48, 4);
VEXO_FIELD(value.u32Field.zero, 52, 4);
VEXO_FIELD(value.u32Field.first, 56, 4);
VEXO_FIELD(value.i32Field.minimum, 40, 4);
VEXO_FIELD(value.i32Field.maximum, 44, 4);
VEXO_FIELD(value.i32Field.elementCount, 48, 4);
VEXO_FIELD(value.i32Field.zero, 52, 4);
VEXO_FIELD(value.i32Field.first, 56, 4);
VEXO_FIELD(value.u64Field.minimum, 40, 8);
VEXO_FIELD(value.u64Field.maximum, 48, 8);
VEXO_FIELD(value.u64Field.elementCount, 56, 4);
VEXO_FIELD(value.u64Field.zero, 60, 4);
VEXO_FIELD(value.u64Field.first, 64, 8);
VEXO_FIELD(value.i64Field.minimum, 40, 8);
VEXO_FIELD(value.i64Field.maximum, 48, 8);
VEXO_FIELD(value.i64Field.elementCount, 56, 4);
VEXO_FIELD(value.i64Field.zero, 60, 4);
VEXO_FIELD(value.i64Field.first, 64, 8);
VEXO_FIELD(value.f64Field.minimum, 40, 8);
VEXO_FIELD(value.f64Field.maximum, 48, 8);
VEXO_FIELD(value.f64Field.elementCount, 56, 4);
VEXO_FIELD(value.f64Field.zero, 60, 4);
VEXO_FIELD(value.f64Field.first, 64, 8);
VEXO_FIELD(value.string.unused, 40, 8);
VEXO_FIELD(value.enumeration.entryCount, 40, 4);
VEXO_FIELD(value.enumeration.labels, 48, 8);
VEXO_FIELD(value.enumeration.values, 56, 8);
VEXO_FIELD(value.enumeration.value, 64, 4);
VEXO_FIELD(value.enumeration.symbolicNames, 72, 8);
VEXO_FIELD(value.string.text, 48, 8);
VEXO_FIELD(next, 80, 8);     /* NOLINT(bugprone-sizeof-expression): the size of the pointer */
VEXO_FIELD(previous, 88, 8); /* NOLINT(bugprone-sizeof-expression) */
VEXO_FIELD(depth, 96, 4);
VEXO_FIELD(parentName, 104, 8);
VEXO_FIELD(unit, 112, 8);
VEXO_FIELD(port, 120, 4);
VEXO_FIELD(reserved124, 124, 4);
VEXO_FIELD(structSize, 128, 4);
VEXO_FIELD(version, 132, 4);
VEXO_FIELD(description, 136, 8);
VEXO_FIELD(toolTip, 144, 8);
VEXO_FIELD(genICamName, 152, 8);
VEXO_FIELD(genICamVisibility, 160, 4);
VEXO_FIELD(genICamStreamable, 164, 1);
VEXO_FIELD(reserved165, 165, 3);
VEXO_FIELD(invalidatingNames, 168, 8);
VEXO_FIELD(invalidatingNameCount, 176, 4);
VEXO_FIELD(invalidatingNameCapacity, 180, 4);
VEXO_FIELD(genICamType, 184, 4);
VEXO_FIELD(reserved188, 188, 4);
VEXO_FIELD(enumEntryDescriptions, 192, 8);
VEXO_FIELD(enumEntryToolTips, 200, 8);
VEXO_FIELD(enumEntryGenICamNames, 208, 8);
#undef VEXO_FIELD
#undef VEXO_STATIC_ASSERT

#ifdef __cplusplus
}
#endif
#endif
