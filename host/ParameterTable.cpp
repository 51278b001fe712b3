#include "host/ParameterTable.h"

#include "applet_host/record.h"
#include "applet_tools/applet/values.h"

#include "vexo/register_info.h"
#include "vexo/type_tags.hpp"

#include <bit>

namespace host {
namespace {

vexo_kind kindOf(int kind) {
    switch (kind) {
    case REGISTER_KIND_INT:
        return VEXO_INT32;
    case REGISTER_KIND_INT64:
        return VEXO_INT64;
    case REGISTER_KIND_UINT64:
        return VEXO_UINT64;
    case REGISTER_KIND_DOUBLE:
        return VEXO_DOUBLE;
    case REGISTER_KIND_STRING:
        return VEXO_TEXT;
    case REGISTER_KIND_ENUM:
        return VEXO_ENUM;
    case REGISTER_KIND_UINT_FIELD:
    case REGISTER_KIND_INT_FIELD:
    case REGISTER_KIND_UINT64_FIELD:
    case REGISTER_KIND_INT64_FIELD:
    case REGISTER_KIND_DOUBLE_FIELD:
        return VEXO_FIELD;
    default:
        return VEXO_UINT32;
    }
}

/** The type tag for accesses to a number of the kind. */
FgParamTypes tagFor(int kind) {
    FgParamTypes tag{};
    applet_host::withNumberOf(kind, [&](auto number) { tag = tagOf<decltype(number)>; });
    return tag;
}

ParameterRow rowOf(applet_tools::Instance& instance, const applet_tools::Parameter& parameter) {
    const vexo_kind kind = kindOf(parameter.kind());
    return {.id = parameter.id,
            .kind = kind,
            .tag = tagFor(parameter.kind()),
            .isNumber = kind != VEXO_TEXT && kind != VEXO_FIELD,
            .hasElements = parameter.kind() == REGISTER_KIND_UINT_FIELD,
            .parameter = &parameter,
            .label = parameter.label(),
            .unit = parameter.unit(),
            .description = explanationOf(instance, parameter),
            .group = parameter.path(),
            .readEffect = parameter.effectOfReading(),
            .setEffect = parameter.effectOfWriting(),
            .entries = entriesOf(parameter)};
}

} // namespace

ParameterTable::ParameterTable(applet_tools::Instance& instance,
                               const applet_tools::ParameterList& parameters) {
    m_rows.reserve(parameters.all().size());
    for (const applet_tools::Parameter& parameter : parameters.all())
        m_rows.push_back(rowOf(instance, parameter));
    const auto slots = std::bit_ceil(static_cast<std::uint32_t>(2 * m_rows.size() + 2));
    m_mask = slots - 1;
    m_shift = static_cast<unsigned>(std::countl_zero(m_mask));
    m_slots.resize(slots);
    for (const ParameterRow& row : m_rows) {
        m_ids.emplace(row.parameter->name, row.id);
        std::uint32_t index = slotOf(row.id);
        while (m_slots[index].row != nullptr)
            index = (index + 1) & m_mask;
        m_slots[index] = {row.id, &row};
    }
}

} // namespace host
