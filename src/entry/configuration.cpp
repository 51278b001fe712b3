// Configuration files: saving and loading of the whole state of the parameters. Neither takes the lock of the
// parameters.

#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "files/Fg_ConfigFileParser.h"

#include <bit>
#include <clocale>
#include <string_view>
#include <vector>

namespace levels = vexo::tools::logging::levels;

namespace {

constexpr std::size_t longestText = 1023;

/** Most systems lack this locale, and the current one stays. If it exists, it is never switched back. */
void chooseLocale() { std::setlocale(LC_ALL, "English"); }

/** The value of one key. The parameter's type says which of the three is set. */
struct FileValue {
    std::uint32_t word = 0;
    double number = 0;
    std::string text;
};

/** Reads the key of a parameter that a load asks for. False if the file lacks it. */
bool readKey(Fg_ConfigFileParser& parser, const SdkParameter& parameter, FileValue& value) {
    switch (parameter.type) {
    case FG_PARAM_TEXT:
        return parser.parseKeySection(port, parameter.name, value.text) == 0;
    case FG_PARAM_DOUBLE:
        return parser.parseDoubleKeySection(port, parameter.name, &value.number) == 0;
    default: {
        int number = 0; // signed, even for unsigned parameters
        const int result = parser.parseIntKeySection(port, parameter.name, &number);
        value.word = static_cast<std::uint32_t>(number);
        return result == 0;
    }
    }
}

const void* valueOf(const SdkParameter& parameter, const FileValue& value) {
    switch (parameter.type) {
    case FG_PARAM_TEXT:
        return value.text.c_str();
    case FG_PARAM_DOUBLE:
        return &value.number;
    default:
        return &value.word;
    }
}

void store(FgLoomWrapperImpl& wrapper, const StoredMember& member, const FileValue& value) {
    if (const auto* word = std::get_if<std::uint32_t FgLoomWrapperImpl::*>(&member))
        wrapper.** word = value.word;
    if (const auto* number = std::get_if<double FgLoomWrapperImpl::*>(&member))
        wrapper.** number = value.number;
    if (const auto* text = std::get_if<std::string FgLoomWrapperImpl::*>(&member))
        wrapper.** text = value.text;
}

} // namespace

// ---- The frame: files, header, identity

int FgLoomWrapper::Fg_saveConfig(Fg_Struct*, const char* file) {
    chooseLocale();
    Fg_ConfigFileParser parser(nullptr, nullptr, false);
    if (!parser.setSaveFile(file)) return fgError().setErr(FG_ERR_SAVE_CONFIG);
    parser.writeConfigFileHeader();
    parser.writeConfigFile("Hersteller", vendorName());
    parser.writeConfigFile("Typ", appletName());
    parser.writeConfigFile("Version", appletVersionName());
    parser.writeConfigFileIntKey("LoadAppletId", loadAppletId());
    parser.writeConfigFileIntKey("AktivePort", port);
    saveParameters(&parser);
    // Reported as success: the API has no code for it.
    if (!parser.finishSaveFile())
        log(levels::accessFailed, "cannot write all of configuration file '", file, "'");
    return fgError().setErr(FG_OK);
}

int FgLoomWrapper::Fg_loadConfig(Fg_Struct*, const char* file) {
    chooseLocale();
    Fg_ConfigFileParser parser(nullptr, file, true);
    setError(FG_ERR_LOAD_CONFIG);
    // The code and the last error differ: only the code names the cause.
    if (!parser.checkFileExist(file) || !parser.checkFileType(file)) return FG_ERR_FILE_TYPE;
    std::string text;
    int activePort = 0;
    if (parser.parseKeyFromLine("Hersteller", text) != 0) return FG_ERR_LOAD_CONFIG;
    if (parser.parseKeyFromLine("Typ", text) != 0 || text != appletName()) return FG_ERR_LOAD_CONFIG;
    if (parser.parseIntKeyFromHeader("AktivePort", &activePort) != 0) return FG_ERR_LOAD_CONFIG;
    if (loadParameters(&parser) == 0) return FG_ERR_LOAD_CONFIG;
    return fgError().setErr(FG_OK);
}

// ---- The body: one key for each parameter with a role in the file, in the order of the rows

void FgLoomWrapperImpl::saveParameters(Fg_ConfigFileParser* parser) {
    parser->writeConfigFileByPort(port);
    // If a getter throws, only its own line is missing; one that stores nothing gives 0.
    for (const SdkParameter& parameter : sdkParameters)
        if (parameter.file.saved) quietly([&] { saveParameter(*parser, parameter); });
}

void FgLoomWrapperImpl::saveParameter(Fg_ConfigFileParser& parser, const SdkParameter& parameter) {
    if (parameter.type == FG_PARAM_TEXT)
        return parser.writeConfigFile(
            parameter.name, std::get<TextFunction*>(parameter.source)(*this).substr(0, longestText));
    std::uint64_t value = 0; // room for every width; little-endian
    read(parameter, &value, 0, parameter.type);
    switch (parameter.type) {
    case FG_PARAM_DOUBLE:
        return parser.writeConfigFileDoubleKey(parameter.name, std::bit_cast<double>(value));
    case FG_PARAM_INT64:
        return parser.writeConfigFileInt64Key(parameter.name, static_cast<std::int64_t>(value));
    default: // signed, even for unsigned parameters
        return parser.writeConfigFileIntKey(parameter.name, static_cast<std::int32_t>(value));
    }
}

int FgLoomWrapperImpl::loadParameters(Fg_ConfigFileParser* parser) {
    int complete = 1;
    FileValue value;
    try {
        std::vector<std::string_view> keys;
        for (const SdkParameter& parameter : sdkParameters)
            if (parameter.file.required) keys.emplace_back(parameter.name);
        parser->prepareKeys(Fg_ConfigFileParser::getPortString(port), keys);
        // First store the values unchecked, so that each setter sees the file's values of its neighbours.
        for (const SdkParameter& parameter : sdkParameters) {
            if (!parameter.file.required) continue;
            if (readKey(*parser, parameter, value))
                store(*this, parameter.file.member, value);
            else
                complete = 0;
        }
        // A value that its setter refuses does not fail the load, and stays in the variable.
        for (const SdkParameter& parameter : sdkParameters) {
            if (!parameter.file.applied || !readKey(*parser, parameter, value)) continue;
            quietly([&] { parameter.set(*this, valueOf(parameter, value), parameter.type); });
        }
        return complete;
    } catch (const std::exception&) {
        return 0;
    }
}
