/** The XML nodes of one parameter: its register, where the value lives, and its feature, what it means. */
#ifndef CATALOGUE_PARAMETERINFOGENERATORXML_H
#define CATALOGUE_PARAMETERINFOGENERATORXML_H

#include "catalogue/xml_text.h"
#include "vexo/register_info.h"

#include <cstdint>
#include <map>
#include <ostream>
#include <vector>

/**
 * Writes to the stream given to it. No node contains a current value: the value arguments select the
 * kind, and those of arrays give the number of elements.
 */
class ParameterInfoGeneratorXML {
public:
    /** Entry values of an enumeration with their symbolic names; the nodes follow the order of the values. */
    using EntryNames = std::map<int, const char*>;

    explicit ParameterInfoGeneratorXML(std::ostream& stream) : m_writer(stream) {}

    /** The lines that all registers share; `length` in bytes. */
    void infoGenerate(const RegisterInfo& record, int length);
    /** Integer; an increment of 0 is left out. */
    void infoGenerate(const RegisterInfo& record, std::uint64_t value, std::uint64_t minimum,
                      std::uint64_t maximum, std::uint64_t increment);
    /** Floating point number, always without its increment. */
    void infoGenerate(const RegisterInfo& record, double value, double minimum, double maximum,
                      double increment);
    /** Text. */
    void infoGenerate(const RegisterInfo& record);
    /** Enumeration. */
    void infoGenerate(const RegisterInfo& record, int value, const EntryNames& names);
    /* Arrays: a selector of the element, then the nodes of the number; an integer's increment is kept. */
    void infoGenerate(const RegisterInfo& record, const std::vector<std::uint64_t>& values,
                      std::uint64_t minimum, std::uint64_t maximum, std::uint64_t increment);
    void infoGenerate(const RegisterInfo& record, const std::vector<double>& values, double minimum,
                      double maximum, double increment);

private:
    void openRegister(const char* tag, const RegisterInfo& record, const char* suffix);
    void describe(const RegisterInfo& record);
    void linkRegister(const RegisterInfo& record);
    template <typename Number> void limit(Number minimum, Number maximum);
    void selectElement(const RegisterInfo& record, std::size_t count);
    void integerUpToLimits(const RegisterInfo& record, std::uint64_t minimum, std::uint64_t maximum);
    void step(std::uint64_t increment);

    catalogue::XmlWriter m_writer;
};

#endif
