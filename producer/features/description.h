/** Writes the XML description of a module's features. */
#ifndef PRODUCER_FEATURES_DESCRIPTION_H
#define PRODUCER_FEATURES_DESCRIPTION_H

#include "features/Feature.h"

#include <string>
#include <vector>

namespace producer {

struct DescriptionNames;

/** A document of GenApi's schema 1.1. The feature with index n has slot n (see RegisterMap). */
std::string describe(const DescriptionNames& names, const std::vector<Feature>& features);

} // namespace producer

#endif
