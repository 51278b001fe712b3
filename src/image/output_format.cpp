// Output format: the input that the multiplexer at the end of the image path passes on, and the shift before
// it that aligns the significant bits.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "image/format_table.h"

#include <algorithm>

using namespace catalogue;

namespace {

std::string formatName(const char* what, const std::string& number = "") {
    return std::string(process0) + "OutputFormat_FG_FORMAT_" + what + number;
}

/** The first two characters as a number, whatever the text's length. */
int twoDigits(const std::string& text) { return 10 * digitAt(text, 0) + digitAt(text, 1); }

std::uint32_t formatBits(std::uint32_t format) {
    const std::optional<std::uint32_t> bits = shiftWidthOf(format);
    if (!bits) refuse(FG_ERR_UNRESOLVED);
    return *bits;
}

} // namespace

void FgLoomWrapperImpl::discoverOutputFormats(RuntimeTextRoom& room) {
    const std::string inputs = readText(room, formatName("NoOfInputs"));
    // Names have room for two digits.
    const int count = std::min(inputs.size() == 2 ? twoDigits(inputs) : digitAt(inputs, 0), 100);
    m_formatMaxBits = twoDigits(readText(room, formatName("MaxBits")));
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        const std::string name = requireText(room, formatName("Input", number));
        const auto* known = std::ranges::find(outputFormats, name, &OutputFormat::name);
        if (known == std::end(outputFormats)) refuse(FG_ERR_UNRESOLVED);
        m_formatInputs.push_back({.format = known->format, .bits = known->bits});
        FormatInput& input = m_formatInputs.back();
        const std::string flag = requireText(room, formatName("InputFlag", number));
        input.hasTrash = flag.starts_with('1');
        // One character even above 9, as in the names of the design.
        if (input.hasTrash) {
            const std::string trash = std::string(process0) + "OutputFormat_Convert" +
                                      static_cast<char>('0' + i) + "_VirtualTrash_EnableTrash_Value";
            input.trashId = static_cast<std::uint32_t>(getParameterIdByName(trash.c_str()));
        }
    }
}

void FgLoomWrapperImpl::applyDynamicShift(std::uint32_t customShift, std::uint32_t alignment,
                                          std::uint32_t bits) {
    const auto maximum = static_cast<std::uint32_t>(m_formatMaxBits);
    std::uint32_t shift = 0;
    switch (alignment) {
    case FG_LEFT_ALIGNED:
        shift = maximum - bits;
        break;
    case FG_RIGHT_ALIGNED:
        shift = maximum - std::min(bits, 16u);
        break;
    case FG_CUSTOM_BIT_SHIFT_MODE: {
        shift = customShift + maximum - bits;
        const auto signedShift = static_cast<std::int32_t>(shift);
        if (signedShift < 0 || signedShift >= m_formatMaxBits) refuse(FG_ERR_OUT_OF_RANGE);
        break;
    }
    default:
        refuse(FG_ERR_UNRESOLVED);
    }
    loomSet_Process0_OutputFormat_DynamicShift_Shift_Value(shift);
}

void FgLoomWrapperImpl::updateBitShiftRange() {
    republishMaximum(recordAt(indexOf(FG_CUSTOM_BIT_SHIFT_RIGHT)),
                     [this] { return formatBits(m_format) - 1; });
}

void FgLoomWrapperImpl::set_FG_FORMAT(std::uint32_t value) {
    requireEntry(enumOutputFormat, value);
    Replacement stored(m_format, value);
    // All branches but the selected one are silenced, also for a format that the design lacks.
    const FormatInput* selected = nullptr;
    for (const FormatInput& input : m_formatInputs) {
        if (input.format == value) selected = &input;
        if (!input.hasTrash) continue;
        const std::uint32_t silent = input.format != value;
        if (setUnwrappedParameterWithType(static_cast<int>(input.trashId), &silent, 0, FG_PARAM_UINT32) !=
            FG_OK)
            refuse(FG_ERR_UNRESOLVED);
    }
    if (selected == nullptr) refuse(FG_ERR_OUT_OF_RANGE);
    applyDynamicShift(m_bitAlignment == FG_CUSTOM_BIT_SHIFT_MODE ? m_customBitShiftRight : 0, m_bitAlignment,
                      selected->bits);
    loomSet_Process0_OutputFormat_FG_FORMAT_SelectSource(
        static_cast<std::uint32_t>(selected - m_formatInputs.data()));
    stored.keep();
    updateBitShiftRange();
}

void FgLoomWrapperImpl::set_FG_BITALIGNMENT(std::uint32_t value) {
    requireEntry(enumBitAlignment, value);
    Replacement stored(m_bitAlignment, value);
    set_FG_FORMAT(m_format);
    stored.keep();
}

void FgLoomWrapperImpl::set_FG_CUSTOM_BIT_SHIFT_RIGHT(std::uint32_t value) {
    requireAtMost(value, formatBits(m_format) - 1);
    Replacement stored(m_customBitShiftRight, value);
    // Passed on to the shift. Without custom alignment the value is kept for later.
    set_FG_BITALIGNMENT(m_bitAlignment);
    stored.keep();
}
