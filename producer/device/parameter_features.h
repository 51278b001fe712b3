/** The applet's parameters as features, by their own names. */
#ifndef PRODUCER_DEVICE_PARAMETERFEATURES_H
#define PRODUCER_DEVICE_PARAMETERFEATURES_H

#include "device/Station.h"
#include "features/Feature.h"

#include <functional>
#include <vector>

namespace producer {

/** One for each parameter of the tree. `isAcquiring` tells whether those are locked that no acquisition may see change.
 *  The station must live as long as the features. */
std::vector<Feature> parameterFeatures(Station& station, const std::function<bool()>& isAcquiring);

} // namespace producer

#endif
