#include "catalogue/ParameterInfoGeneratorXML.h"

#include "catalogue/live_records.h"

#include <string_view>

using catalogue::loadLive;
using catalogue::xmlStringFilter;

namespace {

constexpr const char* littleEndian = "<Endianess>LittleEndian</Endianess>\n"; // spelled as in the schema

const char* accessMode(std::uint32_t access) {
    switch (access & (REGISTER_ACCESS_READ | REGISTER_ACCESS_WRITE)) {
    case REGISTER_ACCESS_READ | REGISTER_ACCESS_WRITE:
        return "RW";
    case REGISTER_ACCESS_READ:
        return "RO";
    case REGISTER_ACCESS_WRITE:
        return "WO";
    default:
        return "";
    }
}

/** Bytes of an integer's register; one parameter's is wider. */
int integerLength(const RegisterInfo& record) {
    return record.name != nullptr && std::string_view(record.name) == "FG_TRANSFER_LEN" ? 8 : 4;
}

} // namespace

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record, int length) {
    if (record.id != 0) m_writer.put("<Address>", record.id, "</Address>\n");
    m_writer.put("<Length>", length, "</Length>\n<AccessMode>", accessMode(loadLive(record.access)),
                 "</AccessMode>\n<pPort>DevicePort</pPort>\n");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record, std::uint64_t /*value*/,
                                             std::uint64_t minimum, std::uint64_t maximum,
                                             std::uint64_t increment) {
    integerUpToLimits(record, minimum, maximum);
    if (increment != 0) step(increment);
    m_writer.put("</Integer>");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record, double /*value*/, double minimum,
                                             double maximum, double /*increment*/) {
    openRegister("FloatReg", record, "_Reg");
    infoGenerate(record, 8);
    m_writer.put(littleEndian, "</FloatReg>\n<Float Name=\"", xmlStringFilter(record.name), "\">\n");
    describe(record);
    linkRegister(record);
    limit(minimum, maximum);
    m_writer.put("</Float>");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record) {
    openRegister("StringReg", record, ""); // register and feature in one
    describe(record);
    infoGenerate(record, 4096);
    m_writer.put("</StringReg>");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record, int /*value*/,
                                             const EntryNames& names) {
    m_writer.put("<Enumeration Name='", xmlStringFilter(record.name), "'>\n");
    describe(record);
    for (const auto& [value, name] : names)
        m_writer.put("<EnumEntry Name=\"", xmlStringFilter(name), "\">\n<Value>", value,
                     "</Value>\n</EnumEntry>\n");
    linkRegister(record);
    m_writer.put("</Enumeration>\n\n");

    openRegister("IntReg", record, "_Reg");
    infoGenerate(record, 4);
    m_writer.put("<Sign>Unsigned</Sign>\n", littleEndian, "</IntReg>");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record,
                                             const std::vector<std::uint64_t>& values, std::uint64_t minimum,
                                             std::uint64_t maximum, std::uint64_t increment) {
    selectElement(record, values.size());
    integerUpToLimits(record, minimum, maximum);
    step(increment);
    m_writer.put("</Integer>");
    m_writer.flush();
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& record, const std::vector<double>& values,
                                             double minimum, double maximum, double increment) {
    selectElement(record, values.size());
    infoGenerate(record, minimum, minimum, maximum, increment);
}

void ParameterInfoGeneratorXML::openRegister(const char* tag, const RegisterInfo& record,
                                             const char* suffix) {
    m_writer.put("<", tag, " ");
    if (record.name != nullptr) m_writer.put("Name=\"", xmlStringFilter(record.name), suffix, "\"");
    m_writer.put(">\n");
}

void ParameterInfoGeneratorXML::describe(const RegisterInfo& record) {
    if (record.displayName == nullptr || *record.displayName == '\0') return;
    m_writer.put("<Description>", xmlStringFilter(record.displayName), "</Description>\n");
}

void ParameterInfoGeneratorXML::linkRegister(const RegisterInfo& record) {
    m_writer.put("<pValue>", xmlStringFilter(record.name), "_Reg</pValue>\n");
}

template <typename Number> void ParameterInfoGeneratorXML::limit(Number minimum, Number maximum) {
    m_writer.put("<Min>", minimum, "</Min>\n<Max>", maximum, "</Max>\n");
}

void ParameterInfoGeneratorXML::selectElement(const RegisterInfo& record, std::size_t count) {
    m_writer.put("<Integer Name='", xmlStringFilter(record.name),
                 "_Selector'>\n<Value>0</Value>\n<Min>0</Min>\n<Max>", count - 1,
                 "</Max>\n<Inc>1</Inc>\n<pSelect>", xmlStringFilter(record.name),
                 "_Reg</pSelect>\n</Integer>");
}

/** The nodes of an integer without the end of the second. */
void ParameterInfoGeneratorXML::integerUpToLimits(const RegisterInfo& record, std::uint64_t minimum,
                                                  std::uint64_t maximum) {
    openRegister("IntReg", record, "_Reg");
    infoGenerate(record, integerLength(record));
    // Declared signed, while the limits below are written as unsigned numbers: clients expect both.
    m_writer.put("<Sign>Signed</Sign>\n", littleEndian, "</IntReg>\n<Integer Name='",
                 xmlStringFilter(record.name), "'>\n");
    describe(record);
    linkRegister(record);
    limit(minimum, maximum);
}

void ParameterInfoGeneratorXML::step(std::uint64_t increment) {
    m_writer.put("<Inc>", increment, "</Inc>\n");
}
