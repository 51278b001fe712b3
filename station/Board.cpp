#include "station/Board.h"

#include <array>
#include <string>

namespace station {

const char* nameOf(Parameter parameter) {
    static constexpr const char* names[] = {
#define PARAMETER(name, designName) designName,
#include "station/parameters.def"
#undef PARAMETER
    };
    static_assert(std::size(names) == parameterCount);
    return names[static_cast<std::size_t>(parameter)];
}

const char* nameOf(Event event) {
    // Trivially destructible: a thread may still advance time during the exit of the process.
    struct Name {
        char text[96];
    };
    static const std::array<Name, eventCount> names = [] {
        const std::string port = "Device1_Process1_Trigger_Events_Events_LVAL_FVAL_";
        const std::string inputs = "Device1_Process1_Trigger_Inputs_";
        std::array<std::string, eventCount> all{port + "Cam0FrameStart",
                                                port + "Cam0FrameEnd",
                                                port + "Cam0LineStart",
                                                port + "Cam0LineEnd",
                                                "Device1_Process0_Camera_LinkLost",
                                                "Device1_Process0_Overflow_Overflow",
                                                "Device1_Process0_BoardStatus_TemperatureAlarm",
                                                inputs + "Debounce8_Glitch",
                                                port + "CustomSignalEvent0",
                                                port + "CustomSignalEvent1"};
        for (std::size_t input = 0; input < inputCount; ++input) {
            const bool isFront = input >= 8;
            std::string group = inputs + "InputEvents_Input";
            group += isFront ? "FrontEvents_Front" : "Events_";
            const std::string number = std::to_string(isFront ? input - 8 : input);
            all[static_cast<std::size_t>(pinEvent(input, true))] = group + "Pin" + number;
            all[static_cast<std::size_t>(pinEvent(input, false))] = group + "NotPin" + number;
        }
        std::array<Name, eventCount> fixed{};
        for (std::size_t i = 0; i < eventCount; ++i)
            all[i].copy(fixed[i].text, sizeof(Name::text) - 1);
        return fixed;
    }();
    return names[static_cast<std::size_t>(event)].text;
}

} // namespace station
