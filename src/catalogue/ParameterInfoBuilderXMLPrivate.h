/** The parts of the XML document, in the order in which they are written. */
#ifndef CATALOGUE_PARAMETERINFOBUILDERXMLPRIVATE_H
#define CATALOGUE_PARAMETERINFOBUILDERXMLPRIVATE_H

#include "catalogue/Category.h"
#include "catalogue/Fg_ParameterInfo.h"

#include <ostream>
#include <string_view>

class ParameterInfoBuilderXMLPrivate {
public:
    ParameterInfoBuilderXMLPrivate(const Fg_ParameterInfo& info, const char* appletName, int port)
        : m_info(info)
        , m_appletName(appletName)
        , m_port(port) {}

    void writeDocument(std::ostream& stream);

private:
    void buildXMLHeader(std::ostream& stream);
    void startAppletDescription(std::ostream& stream);
    void processRegisterInfo(std::ostream& stream, const RegisterInfo* info, const RegisterInfo* parent);
    void buildParamDescr(std::ostream& stream, const RegisterInfo& info, const RegisterInfo* parent);
    void addFeatureToCategory(std::string_view category, std::string_view feature);
    void buildCategories(std::ostream& stream);
    void writeCategory(std::ostream& stream, const Category& category);
    void stopAppletDescription(std::ostream& stream);

    const Fg_ParameterInfo& m_info;
    const char* m_appletName;
    int m_port;
    Category m_root{"Root"};
};

#endif
