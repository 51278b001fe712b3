/** The text of a report: records with --plain, else text for a person; or the document. */
#ifndef APPLETCTL_BASE_REPORT_TEXT_H
#define APPLETCTL_BASE_REPORT_TEXT_H

#include "appletctl/base/Report.h"

#include <string>
#include <vector>

namespace appletctl {

/** A line of the output: the cells if --plain, else the text. */
std::string lineOf(const std::vector<std::string>& cells, const std::string& text);

/** Reports a written file. */
std::string writtenLine(const std::string& file);

/** A remark or a drawing; omitted with --plain. */
std::string forPerson(std::string text);

/** The printed text of the report: records with --plain, else folded to the terminal's width. */
std::string laidOut(const Report& report);

/** The complete document of the report of `command`, in UTF-8; on one line, or indented by this much. */
std::string documentText(const Report& report, const std::string& command, int indent = -1);

} // namespace appletctl

#endif
