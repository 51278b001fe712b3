/** XML documents that describe the parameters to a client, and checks of them. */
#ifndef APPLETCTL_COMMANDS_FILES_XML_H
#define APPLETCTL_COMMANDS_FILES_XML_H

#include "appletctl/commands/Context.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace appletctl {

/** An element with its content; white space between elements is dropped. */
struct XmlElement {
    std::string tag;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;
    std::vector<XmlElement> children;

    /** Empty if there is none. */
    std::string attribute(std::string_view name) const;
    /** Text of the first child with that tag, if there is one. */
    std::optional<std::string> child(std::string_view tag) const;
};

/** Parses elements, attributes and text; no comments, and one declaration, at the start. Throws Failure. */
XmlElement readXml(std::string_view document);

/** The document that the library returns. */
std::string ownDocument(Instance& instance);

/** A document for other clients, made from the same tree. */
std::string portableDocument(Context& context);

struct XmlFinding {
    std::string node; /**< "RegisterDescription" for the document as a whole */
    std::string reason;
};

/** Problems that a client will have with the document. */
std::vector<XmlFinding> findingsIn(const XmlElement& document, const ParameterList& parameters);

} // namespace appletctl

#endif
