/** The applet's parameters as features with their own names. */
#ifndef PRODUCER_DEVICE_PARAMETERFEATURES_H
#define PRODUCER_DEVICE_PARAMETERFEATURES_H

#include "device/DeviceStation.h"
#include "features/Feature.h"

#include <functional>
#include <vector>

namespace producer {

/** Creates a feature for each parameter of the tree. `acquisitionLock`: returns why parameters that must not change
 *  during an acquisition are locked; empty if they are not. The station must outlive the features. */
std::vector<Feature> parameterFeatures(DeviceStation& station,
                                       const std::function<std::string()>& acquisitionLock);

} // namespace producer

#endif
