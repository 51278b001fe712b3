/*
 * Where each field of the records that a host shares with the library lies, and how wide it is: what a host that was
 * built years ago relies on. C11 and C++20. RegisterInfo has the same in its own header.
 */
#ifndef TESTS_RECORD_LAYOUT_H
#define TESTS_RECORD_LAYOUT_H

#include "vexo/design_loader.h"
#include "vexo/fg_api.h"
#include "vexo/logging_dispatcher.h"

#include <assert.h>
#include <stddef.h>

#define RECORD(record, size) static_assert(sizeof(record) == (size), #record " has another size")
#define FIELD(record, field, offset, size)                                                                   \
    static_assert(offsetof(record, field) == (offset), #record "." #field " has moved");                     \
    static_assert(sizeof(((record*)0)->field) == (size), #record "." #field " has another size")

RECORD(FieldParameterInt_s, 8);
FIELD(FieldParameterInt_s, value, 0, 4);
FIELD(FieldParameterInt_s, index, 4, 4);

RECORD(FieldParameterDouble_s, 16);
FIELD(FieldParameterDouble_s, value, 0, 8);
FIELD(FieldParameterDouble_s, index, 8, 4);

RECORD(FieldParameterAccess, 24);
FIELD(FieldParameterAccess, vtype, 0, 4);
FIELD(FieldParameterAccess, index, 4, 4);
FIELD(FieldParameterAccess, count, 8, 4);
FIELD(FieldParameterAccess, values, 16, 8);

RECORD(FgEventRecord, 24);
FIELD(FgEventRecord, name, 0, 8);
FIELD(FgEventRecord, value, 8, 4);
FIELD(FgEventRecord, description, 16, 8);

RECORD(TslEvent, 16);
FIELD(TslEvent, publication, 0, 4);
FIELD(TslEvent, name, 8, 8);

RECORD(LoggingDispatcherDescriptor, 16);
FIELD(LoggingDispatcherDescriptor, init, 0, 8);
FIELD(LoggingDispatcherDescriptor, fini, 8, 8);

#undef RECORD
#undef FIELD

#endif
