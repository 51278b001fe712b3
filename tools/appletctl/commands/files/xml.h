/** Documents that describe the parameters to a client, and what is wrong with them. */
#ifndef APPLETCTL_COMMANDS_FILES_XML_H
#define APPLETCTL_COMMANDS_FILES_XML_H

#include "appletctl/commands/Context.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace appletctl {

/** An element with its content; white space between elements is left out. */
struct XmlElement {
    std::string tag;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;
    std::vector<XmlElement> children;

    /** Empty where there is none. */
    std::string attribute(std::string_view name) const;
    /** Text of the first child of that tag; nothing where there is none. */
    std::optional<std::string> child(std::string_view tag) const;
};

/** Reads elements, attributes and text; no comments, and one declaration, at the start. Throws Failure. */
XmlElement readXml(std::string_view document);

/** The document that the library gives. */
std::string ownDocument(Instance& instance);

/** A document for other clients, made from the same tree. */
std::string portableDocument(Context& context);

struct XmlFinding {
    std::string node; /**< "RegisterDescription" for the document as a whole */
    std::string reason;
};

/** What a client will stumble over. */
std::vector<XmlFinding> findingsIn(const XmlElement& document, const ParameterList& parameters);

} // namespace appletctl

#endif
