/** Two configurations side by side. */
#ifndef APPLETCTL_DIFFERENCES_H
#define APPLETCTL_DIFFERENCES_H

#include "appletctl/loading.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace appletctl {

/** One of two configurations. */
struct Side {
    std::string title;  // of its column
    const char* member; // of a difference in the document
    const ConfigurationFile* file;
};

/** Compares what a load would read; measurements and what is saved for the reader only are left out. Adds the
 *  table to the text and "differences" to the document. Returns their number. */
std::size_t addDifferences(Report& report, const Side& a, const Side& b, const ParameterList& parameters,
                           FileKeys& keys);

} // namespace appletctl

#endif
