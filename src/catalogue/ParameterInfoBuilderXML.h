/** The XML document that describes the parameter tree of one port. */
#ifndef CATALOGUE_PARAMETERINFOBUILDERXML_H
#define CATALOGUE_PARAMETERINFOBUILDERXML_H

#include <memory>
#include <string>

class Fg_ParameterInfo;
class ParameterInfoBuilderXMLPrivate;

class ParameterInfoBuilderXML {
public:
    /** Takes the name, as this layer does not know the wrapper. Both must outlive the builder. */
    ParameterInfoBuilderXML(const Fg_ParameterInfo& info, const char* appletName, int port);
    virtual ~ParameterInfoBuilderXML();
    ParameterInfoBuilderXML(const ParameterInfoBuilderXML&) = delete;
    ParameterInfoBuilderXML& operator=(const ParameterInfoBuilderXML&) = delete;

    /** Builds the document; may be called once. Reads the tree without a lock. */
    std::string build();

private:
    std::unique_ptr<ParameterInfoBuilderXMLPrivate> m_private;
};

#endif
